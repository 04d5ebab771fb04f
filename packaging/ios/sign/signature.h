// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace quillet::sign {

/// The file `module` with an ad-hoc signature under the name `identifier` at its end, in the place
/// of any that was there. Systems before 11 read its SHA-1 hashes, later ones its SHA-256 hashes.
/// Throws Refusal (see module.h) for a file that this tool does not sign, and for an identifier
/// that is empty.
std::string signedModule(std::string module, const std::string& identifier);

}  // namespace quillet::sign
