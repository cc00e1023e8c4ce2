// The app container's files: the Documents folder, property-list files and
// moving an item within a folder. Primitive calls only: what to do with a
// file that cannot be used is the caller's decision.
// On iOS: NSFileManager URLsForDirectory:inDomains: (NSDocumentDirectory,
// NSUserDomainMask), createDirectoryAtPath:withIntermediateDirectories:...,
// attributesOfItemAtPath:error: and moveItemAtPath:toPath:error:;
// NSPropertyListSerialization for the XML and binary forms, and NSData's
// writeToFile:options:error: with NSDataWritingAtomic.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/value.hpp"

namespace sys {

// The host app's Documents folder (absolute path, no trailing slash).
std::string documentsDirectory();

// Creates the folder and any missing parents. Errors are ignored, as the
// callers ignore them: true only when the folder exists afterwards.
bool createDirectories(const std::string& path);

// fileExistsAtPath: (a symbolic link is followed).
bool fileExists(const std::string& path);

// The folder that holds every app's data container, one folder per app named
// by a UUID (/var/mobile/Containers/Data/Application on a phone). Readable
// from SpringBoard, not from inside an app's sandbox.
std::string dataContainersDirectory();
// The container manager's metadata file at the top of each data container,
// and its key naming the bundle the container belongs to.
inline constexpr const char* kContainerMetadataFile =
    ".com.apple.mobile_container_manager.metadata.plist";
inline constexpr const char* kContainerMetadataIdentifier = "MCMMetadataIdentifier";

// contentsOfDirectoryAtPath:error: — the names (not paths) of the folder's
// entries, hidden ones included, in no particular order; empty when it
// cannot be listed.
std::vector<std::string> directoryEntries(const std::string& path);

// What changes whenever a file is written again: stat(2)'s modification
// time, file number and size. An atomic write gives a new file number, so a
// rewrite within the clock's granularity is still told apart.
struct FileStamp {
  long long modified = 0;  // seconds
  long long modifiedNanoseconds = 0;
  unsigned long long fileNumber = 0;
  long long size = 0;
  bool operator==(const FileStamp&) const = default;
};
// stat(2) of `path` (a link is followed); nullopt when nothing is there.
std::optional<FileStamp> fileStamp(const std::string& path);

enum class ReadStatus {
  Missing,     // nothing at the path
  Read,        // a property list, of any root type
  Unreadable,  // something is there, but not a regular file, or its bytes could not be read
  Damaged,     // the bytes were read but are not a property list
  // A regular file whose data protection keeps it closed until the phone is
  // unlocked for the first time since it started: nothing is wrong with it.
  NotYetReadable,
};
struct PlistFile {
  ReadStatus status = ReadStatus::Missing;
  base::Value value;  // the root, when Read
};

// attributesOfItemAtPath:error: first: only an NSFileType of
// NSFileTypeRegular is read (a link is not followed). Then open(2) with
// O_NONBLOCK | O_NOFOLLOW and fstat(2), so that an item swapped in meanwhile
// is caught on the descriptor before a read could block on it; the bytes
// through NSFileHandle readDataToEndOfFileAndReturnError:, the value through
// NSPropertyListSerialization propertyListWithData:options:format:error:.
// A regular file that open(2) refuses while UIApplication's
// isProtectedDataAvailable is NO is NotYetReadable.
PlistFile readPropertyListFile(const std::string& path);

// The root of a readable property list at `path`; nullopt otherwise.
inline std::optional<base::Value> readPropertyList(const std::string& path) {
  PlistFile file = readPropertyListFile(path);
  if (file.status != ReadStatus::Read) return std::nullopt;
  return std::move(file.value);
}

enum class MoveResult { Moved, SourceMissing, TargetExists, Failed };

// moveItemAtPath:toPath:error: within one volume: a file, folder or any other
// item keeps its content under the new name. An item already at `to` is
// never replaced (TargetExists, NSFileWriteFileExistsError); nothing at
// `from` is SourceMissing (NSFileNoSuchFileError). On failure `error`, when
// given, gets the error's localizedDescription.
MoveResult moveItem(const std::string& from, const std::string& to, std::string* error = nullptr);

enum class PlistFormat { Xml, Binary };

// The data protection class a write gives its file (NSDataWritingOptions).
enum class FileProtection {
  HostDefault,  // no option: the class the host app's files get by default
  // NSDataWritingFileProtectionCompleteUntilFirstUserAuthentication: closed
  // from a restart until the first unlock, open afterwards even while locked.
  UntilFirstUnlock,
  // NSDataWritingFileProtectionNone: readable at any time, even before the
  // first unlock.
  None,
};

// Writes atomically: a temporary file beside the target, then a rename, so
// that the target is either the old file or the complete new one, with the
// given protection class. Returns false on failure, with `error` (when
// given) set to the error's localizedDescription; the old file is left in
// place and no temporary file is left behind.
bool writePropertyList(const std::string& path, const base::Value& value,
                       PlistFormat format = PlistFormat::Xml, std::string* error = nullptr,
                       FileProtection protection = FileProtection::HostDefault);

// UIApplicationProtectedDataDidBecomeAvailable: posted when the phone is
// unlocked and protected files can be read again.
inline constexpr const char* kProtectedDataDidBecomeAvailable =
    "UIApplicationProtectedDataDidBecomeAvailable";

}  // namespace sys
