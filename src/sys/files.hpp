// The app container's files: the Documents folder and property-list files.
// On iOS: NSFileManager URLsForDirectory:inDomains: (NSDocumentDirectory,
// NSUserDomainMask), createDirectoryAtURL:withIntermediateDirectories:...,
// NSDictionary dictionaryWithContentsOfURL: and writeToURL:atomically:YES.
#pragma once

#include <optional>
#include <string>

#include "base/value.hpp"

namespace sys {

// The host app's Documents folder (absolute path, no trailing slash).
std::string documentsDirectory();

// Creates the folder and any missing parents. Errors are ignored, as the
// callers ignore them: true only when the folder exists afterwards.
bool createDirectories(const std::string& path);

bool fileExists(const std::string& path);

// Reads a property list in XML or binary form. A missing, unreadable or
// damaged file, or one whose content is not a property list, gives nullopt.
// Any root type is returned; callers that need a dictionary check for one.
std::optional<base::Value> readPropertyList(const std::string& path);

enum class PlistFormat { Xml, Binary };

// Writes atomically: a temporary file beside the target, then a rename, so
// that the target is either the old file or the complete new one. Returns
// false on failure (and leaves the old file in place).
bool writePropertyList(const std::string& path, const base::Value& value,
                       PlistFormat format = PlistFormat::Xml);

}  // namespace sys
