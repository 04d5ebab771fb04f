// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"
#include "platform/string.h"

namespace quillet {

/// A number or a boolean. See Object for its readings.
class NSNumber : public Object {
public:
    using Object::Object;

    /// A property-list boolean: true for any `value` but NO.
    static NSNumber numberWithBool(BOOL value);
    /// A real number of single precision.
    static NSNumber numberWithFloat(float value);
};

/// A property-list dictionary with string keys, matched exactly.
///
/// The functions that read a file take an absolute path of the device. They read the XML and the
/// binary form and answer nil when the file is missing, cannot be read, is not a property list, or
/// holds something other than a dictionary at its top level; the file is left as it is.
class NSDictionary : public Object {
public:
    using Object::Object;

    /// The dictionary in the file at `path`, shared with the platform.
    static NSDictionary dictionaryWithContentsOfFile(NSString path);
    /// A new dictionary from the file at `path`, owned by the answer.
    static NSDictionary initWithContentsOfFile(NSString path);

    /// The value for `key`, shared with the dictionary and valid while that holds it; nil when it
    /// holds none.
    Object objectForKey(NSString key) const;
};

/// A property-list dictionary whose entries can be changed.
class NSMutableDictionary : public NSDictionary {
public:
    using NSDictionary::NSDictionary;

    /// A dictionary of its own from the file at `path`, shared with the platform. Changes reach
    /// the file only by `writeToFile`.
    static NSMutableDictionary dictionaryWithContentsOfFile(NSString path);
    /// The same, owned by the answer.
    static NSMutableDictionary initWithContentsOfFile(NSString path);
    /// A new dictionary without entries, owned by the answer.
    static NSMutableDictionary init();

    // Both share `value`, which must be of a property list's kinds, and copy `forKey`, which must
    // not be nil: the platform may end the process.

    /// Puts `value` under `forKey` in place of an earlier value. A nil `value` removes the entry.
    void setValue(Object value, NSString forKey) const;
    /// Puts `value`, which must not be nil, under `forKey` in place of an earlier value.
    void setObject(Object value, NSString forKey) const;

    /// Writes the dictionary in the XML form to the file at `path`, an absolute path of the
    /// device. With `atomically` YES, a temporary file takes the target's place only once it is
    /// complete, so that `path` always holds the old bytes or the new. NO when the file could not
    /// be written; it then holds what it held.
    BOOL writeToFile(NSString path, BOOL atomically) const;
};

/// The process's view of the file system.
class NSFileManager : public Object {
public:
    using Object::Object;

    /// The process's one manager, shared with the platform; never nil.
    static NSFileManager defaultManager();

    /// YES when there is a file or folder at `path`, an absolute path of the device, whether or not
    /// it can be read. NO for a nil `path`. Where that cannot be found out, the platform decides.
    BOOL fileExistsAtPath(NSString path) const;
};

}  // namespace quillet
