// SPDX-License-Identifier: MIT

// This runtime has the function only in a header of its own, as an inline one. The class is an
// object's first word.
id object_getClass(id object);
id object_getClass(id object) { return object ? *(id*)object : 0; }
