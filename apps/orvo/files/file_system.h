// What is asked of the system beyond names of files: who owns them, who works on them, and when
// their bytes have reached the disk.
#ifndef APPS_ORVO_FILES_FILE_SYSTEM_H
#define APPS_ORVO_FILES_FILE_SYSTEM_H

#include <filesystem>
#include <string>
#include <vector>

namespace client {

// Of characters that names of files may have.
std::string MachineName();
int ThisProcess();
// Whether a process of this machine runs.
bool IsRunning(int process);

// Makes a folder that only its owner may enter; false when that fails or it exists.
bool MakePrivateFolder(const std::filesystem::path& path);
// Empty when it cannot be read. The standard library's own walks end the process without memory.
std::vector<std::string> NamesIn(const std::filesystem::path& folder);
// Removes a folder and the files in it, as far as that goes.
void RemoveFolder(const std::filesystem::path& path) noexcept;
// Whether the file belongs to the user of this process.
bool IsOwn(const std::filesystem::path& path);

// Takes a lock that ends with the process at the latest; below 0 when somebody else has it, or when
// the system has none.
int LockFolder(const std::filesystem::path& path);
void Unlock(int lock);

// Gives a file the owner and the rights of another, and the marks that users and desktops put on it
// (extended attributes), as far as this process may. False when the rights cannot be given.
bool TakeRights(const std::filesystem::path& from, const std::filesystem::path& to);

// Returns once the file's or folder's bytes have reached the disk; false when they cannot.
bool Sync(const std::filesystem::path& path);

}  // namespace client

#endif  // APPS_ORVO_FILES_FILE_SYSTEM_H
