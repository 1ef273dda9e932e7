#pragma once

#include <sys/stat.h>

namespace velmora {

/// Creates a new file with a unique name. Any thread.
/// @param nameTemplate path with "XXXXXX" right before its suffix; receives the file's name.
/// @param suffixLength characters after "XXXXXX", such as 5 for ".tiff".
/// @param mode permissions, by default for the owner only, without those that the process masks.
/// @return the file's descriptor, open for reading and writing; -1 on failure with `errno` set:
/// for an invalid argument the template stays as it was, otherwise it becomes empty.
int makeUniqueFile(char* nameTemplate, int suffixLength, mode_t mode = S_IRUSR | S_IWUSR);

/// Creates an empty file "/tmp/coef-XXXXXX.tiff" with a unique name. Any thread.
/// @return its name, to be given to `deleteTempFile`; null on failure.
char* createTempFile();

/// Removes a file and releases its name, which `createTempFile` returned; null does nothing.
void deleteTempFile(char* name);

}  // namespace velmora
