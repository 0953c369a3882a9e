#pragma once

// getNameInPath() and the lists of extensions stand with the addresses of media.
#include "common/media/address/mediafiles.h"

namespace vantrel {

/// The path up to and including the last "/" before the final component; the whole path when there is none.
QString getParentPath(const QString& path);
/// Lexically normalised: "." and ".." folded, separators written "/". A backslash is a separator only on a
/// system where it is one: elsewhere it is a character of names, and replacing it would name another file.
QString normalizePath(const QString& path);
/// Normalised, and without a "/" at its end but for the root: one text for all that name one item.
QString withoutTrailingSlash(const QString& path);
/// base and name with one "/" between them, and one behind when isDirectory.
QString createJoinedPath(const QString& base, const QString& name, bool isDirectory);
/// Where a file of the path from comes to stand: inside of to when that is a directory or ends with "/" (a
/// directory that has gone since is still no name for the file), else to itself.
QString destinationPath(const QString& to, const QString& from, bool isDirectory);
/// Both name one item: normalised, and with or without a "/" at the end.
bool isSamePath(const QString& path, const QString& other);
/// path lies somewhere below directory; a directory does not lie below itself.
bool isPathBelow(const QString& path, const QString& directory);
/// The path of a second, third ... item of the same name: "clip (2).mov". The name stays within 255 bytes.
QString numberedPath(const QString& path, int number);
/// By its extension, in any case: video or sound.
bool isMediaFile(const QString& path);
/// By its extension, in any case: sound alone.
bool isSoundFile(const QString& path);
/// By its extension, in any case: a picture, which may be one of a sequence.
bool isImageFile(const QString& path);

/// By its extension, in any case: any of these, which is what views show.
bool isShownFile(const QString& path);

} // namespace vantrel
