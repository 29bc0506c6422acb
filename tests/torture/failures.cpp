#include "torture/failures.h"

#include <cerrno>
#include <sstream>

namespace torture {

const std::vector<Failure> failures = {
    // files and directories
    {"CloseHandle", 0, ERROR_INVALID_HANDLE, 0, working},
    {"CopyFileW", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"CreateDirectoryW", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"CreateFileW", -1, ERROR_ACCESS_DENIED, 0, instead},
    {"CreateFileW", -1, ERROR_SHARING_VIOLATION, 0, instead},
    {"DeleteFileA", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"DeleteFileW", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"FindClose", 0, ERROR_INVALID_HANDLE, 0, working},
    {"FindFirstFileW", -1, ERROR_ACCESS_DENIED, 0, instead},
    {"FindNextFileW", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"GetDiskFreeSpaceExW", 0, ERROR_NOT_READY, 0, instead},
    {"GetFileAttributesA", -1, ERROR_ACCESS_DENIED, 0, instead},
    {"GetFileType", FILE_TYPE_UNKNOWN, ERROR_INVALID_HANDLE, 0, instead},
    {"GetTempFileNameA", 0, ERROR_DIRECTORY, 0, instead},
    {"GetTempPathA", 0, ERROR_FILENAME_EXCED_RANGE, 0, instead},
    {"GetTempPathA", 300, 0, 0, instead},  // counted, not written
    {"GetTempPathW", 0, ERROR_FILENAME_EXCED_RANGE, 0, instead},
    {"LockFileEx", 0, ERROR_LOCK_VIOLATION, 0, instead},
    {"RemoveDirectoryA", 0, ERROR_DIR_NOT_EMPTY, 0, instead},
    {"RemoveDirectoryW", 0, ERROR_DIR_NOT_EMPTY, 0, instead},
    {"SHCreateDirectoryExA", ERROR_ACCESS_DENIED, 0, 0, instead},
    {"UnlockFileEx", 0, ERROR_NOT_LOCKED, 0, working},
    {"WriteFile", 0, ERROR_DISK_FULL, 0, instead},
    {"WriteFile", 0, ERROR_LOCK_VIOLATION, 0, instead},
    // the runtime's files
    {"_close", -1, ERROR_INVALID_HANDLE, EBADF, working},
    {"_dup", -1, ERROR_TOO_MANY_OPEN_FILES, EMFILE, instead},
    {"_fdopen", 0, 0, EMFILE, instead},
    {"_filelengthi64", -1, ERROR_INVALID_HANDLE, EBADF, instead},
    {"_fstat64", -1, ERROR_INVALID_HANDLE, EBADF, instead},
    {"_get_osfhandle", -1, 0, EBADF, instead},
    {"_lseek", -1, ERROR_NEGATIVE_SEEK, EINVAL, instead},
    {"_lseeki64", -1, ERROR_NEGATIVE_SEEK, EINVAL, instead},
    {"_read", -1, ERROR_LOCK_VIOLATION, EACCES, instead},
    {"_read", -1, 0, EINTR, instead},
    {"_read", 0, 0, 0, instead},
    {"_setmode", -1, 0, EINVAL, instead},
    {"_telli64", -1, ERROR_INVALID_HANDLE, EBADF, instead},
    {"_waccess", -1, ERROR_ACCESS_DENIED, EACCES, instead},
    {"_wchdir", -1, ERROR_PATH_NOT_FOUND, ENOENT, instead},
    {"_wchmod", -1, ERROR_ACCESS_DENIED, EACCES, instead},
    {"_wopen", -1, ERROR_ACCESS_DENIED, EACCES, instead},
    {"_wopen", -1, ERROR_TOO_MANY_OPEN_FILES, EMFILE, instead},
    {"_wopen", -1, 0, EMFILE, instead},  // the runtime's own table is full
    {"_write", -1, ERROR_DISK_FULL, ENOSPC, instead},
    {"_write", -1, 0, EINTR, instead},
    {"_write", 0, ERROR_DISK_FULL, 0, instead},
    {"_wstat64", -1, ERROR_FILE_NOT_FOUND, ENOENT, instead},
    {"_wunlink", -1, ERROR_ACCESS_DENIED, EACCES, instead},
    {"fclose", EOF, ERROR_DISK_FULL, ENOSPC, working},
    {"fgets", 0, ERROR_LOCK_VIOLATION, EACCES, instead},
    {"fputs", EOF, ERROR_DISK_FULL, ENOSPC, instead},
    {"rename", -1, ERROR_ACCESS_DENIED, EACCES, instead},
    {"rename", -1, ERROR_ALREADY_EXISTS, EEXIST, once},
    // the rest of the runtime
    {"_mktime64", -1, 0, EINVAL, instead},
    {"_pclose", -1, 0, ECHILD, working},
    {"_popen", 0, 0, ENOMEM, instead},
    {"_putenv", -1, 0, EINVAL, instead},
    {"_time64", -1, 0, 0, instead},
    {"_vscprintf_l", -1, 0, EINVAL, instead},
    {"_vsnprintf_s_l", -1, 0, EINVAL, instead},
    {"strftime", 0, 0, ERANGE, instead},
    {"system", -1, 0, ENOENT, instead},
    // processes, modules, environment
    {"CreateProcessA", 0, ERROR_FILE_NOT_FOUND, 0, instead},
    {"FormatMessageW", 0, ERROR_MR_MID_NOT_FOUND, 0, instead},
    {"FreeLibrary", 0, ERROR_MOD_NOT_FOUND, 0, working},
    {"GetComputerNameExA", 0, ERROR_FILE_NOT_FOUND, 0, instead},
    {"GetComputerNameExA", 0, ERROR_MORE_DATA, 0, instead},
    {"GetComputerNameExW", 0, ERROR_FILE_NOT_FOUND, 0, instead},
    {"GetCurrentDirectoryA", 0, ERROR_FILENAME_EXCED_RANGE, 0, instead},
    {"GetCurrentDirectoryA", 300, 0, 0, instead},  // counted, not written
    {"GetCurrentDirectoryW", 0, ERROR_FILENAME_EXCED_RANGE, 0, instead},
    {"GetDriveTypeA", DRIVE_UNKNOWN, 0, 0, instead},
    {"GetEnvironmentVariableA", 5, 0, 0, instead},  // there is one of that name
    {"GetEnvironmentVariableW", 0, ERROR_ENVVAR_NOT_FOUND, 0, instead},
    {"GetEnvironmentVariableW", 5000, 0, 0, once},  // counted, not written
    {"GetExitCodeProcess", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"GetLogicalDriveStringsA", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"GetLogicalDriveStringsA", 2000, 0, 0, once},  // counted, not written
    {"GetLogicalDrives", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"GetModuleFileNameA", 0, ERROR_MOD_NOT_FOUND, 0, instead},
    {"GetModuleFileNameW", 0, ERROR_MOD_NOT_FOUND, 0, instead},
    {"GetModuleHandleA", 0, ERROR_MOD_NOT_FOUND, 0, instead},
    {"GetProcAddress", 0, ERROR_PROC_NOT_FOUND, 0, instead},
    {"GetSystemMetrics", 0, 0, 0, instead},
    {"GetVersionExA", 0, ERROR_INSUFFICIENT_BUFFER, 0, instead},
    {"GetVolumeInformationA", 0, ERROR_NOT_READY, 0, instead},
    {"GetVolumeInformationW", 0, ERROR_NOT_READY, 0, instead},
    {"LoadLibraryA", 0, ERROR_MOD_NOT_FOUND, 0, instead},
    {"LocalFree", 1, ERROR_INVALID_HANDLE, 0, working},
    {"MultiByteToWideChar", 0, ERROR_NO_UNICODE_TRANSLATION, 0, instead},
    {"WideCharToMultiByte", 0, ERROR_NO_UNICODE_TRANSLATION, 0, instead},
    {"SysAllocString", 0, 0, 0, instead},
    {"GetFileVersionInfoA", 0, ERROR_NOT_ENOUGH_MEMORY, 0, instead},
    {"GetFileVersionInfoSizeA", 0, ERROR_RESOURCE_DATA_NOT_FOUND, 0, instead},
    {"VerQueryValueA", 0, ERROR_RESOURCE_TYPE_NOT_FOUND, 0, instead},
    // waiting, the console, sockets
    {"CreateEventA", 0, ERROR_NOT_ENOUGH_MEMORY, 0, instead},
    {"FlushConsoleInputBuffer", 0, ERROR_INVALID_HANDLE, 0, instead},
    {"GetHandleInformation", 0, ERROR_INVALID_HANDLE, 0, instead},
    {"GetStdHandle", -1, ERROR_INVALID_HANDLE, 0, instead},
    {"ResetEvent", 0, ERROR_INVALID_HANDLE, 0, instead},
    {"SetConsoleMode", 0, ERROR_INVALID_HANDLE, 0, instead},
    {"WaitForMultipleObjects", WAIT_FAILED, ERROR_INVALID_HANDLE, 0, once},
    {"WaitForSingleObject", WAIT_FAILED, ERROR_INVALID_HANDLE, 0, instead},
    {"WSACleanup", -1, WSANOTINITIALISED, 0, working},
    {"WSACloseEvent", 0, WSA_INVALID_HANDLE, 0, working},
    {"WSAEventSelect", -1, WSAEINVAL, 0, instead},
    {"WSAStartup", WSASYSNOTREADY, 0, 0, instead},
    {"gethostbyname", 0, WSAHOST_NOT_FOUND, 0, instead},
    {"gethostname", -1, WSAEFAULT, 0, instead},
    {"ioctlsocket", -1, WSAENOTSOCK, 0, instead},
    {"select", -1, WSAENOTSOCK, 0, instead},
    {"select", 0, 0, 0, instead},
    // registry, services, privileges, devices, network shares
    {"AdjustTokenPrivileges", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"CloseServiceHandle", 0, ERROR_INVALID_HANDLE, 0, working},
    {"CM_Locate_DevNode_ExA", CR_NO_SUCH_DEVNODE, 0, 0, instead},
    {"CM_Reenumerate_DevNode_Ex", CR_FAILURE, 0, 0, instead},
    {"LookupPrivilegeValueA", 0, ERROR_NO_SUCH_PRIVILEGE, 0, instead},
    {"OpenProcessToken", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"OpenSCManagerA", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"OpenServiceA", 0, ERROR_ACCESS_DENIED, 0, instead},
    {"QueryServiceStatus", 0, ERROR_INVALID_HANDLE, 0, instead},
    {"RegCloseKey", ERROR_INVALID_HANDLE, 0, 0, working},
    {"RegCreateKeyExA", ERROR_ACCESS_DENIED, 0, 0, instead},
    {"RegOpenKeyExA", ERROR_ACCESS_DENIED, 0, 0, instead},
    {"RegQueryValueExA", ERROR_FILE_NOT_FOUND, 0, 0, instead},
    {"RegQueryValueExA", ERROR_MORE_DATA, 0, 0, instead},
    {"RegQueryValueExW", ERROR_FILE_NOT_FOUND, 0, 0, instead},
    {"WNetAddConnection2W", ERROR_BAD_NETPATH, 0, 0, instead},
    {"WNetAddConnection2W", ERROR_SESSION_CREDENTIAL_CONFLICT, 0, 0, instead},
    {"WNetAddConnection2W", ERROR_EXTENDED_ERROR, 0, 0, instead},
    {"WNetCancelConnection2W", ERROR_NOT_CONNECTED, 0, 0, instead},
    {"WNetCancelConnection2W", ERROR_EXTENDED_ERROR, 0, 0, instead},
    {"WNetGetLastErrorA", ERROR_INVALID_PARAMETER, 0, 0, instead},
};

namespace {

bool is_word_of(const char* words, const std::string& name) {
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        if (word == name) return true;
    }
    return false;
}

}  // namespace

bool is_allocation(const std::string& name) {
    return is_word_of("malloc calloc realloc _strdup", name);
}

bool cannot_fail(const std::string& name) {
    // The C++ runtime: what it allocates comes from malloc, which is failed there.
    for (const char* prefix : {"_Z", "__cxa_", "__gxx_", "_Unwind_"}) {
        if (name.rfind(prefix, 0) == 0) return true;
    }
    constexpr const char* groups[] = {
        // answer from what the process has at hand
        "AreFileApisANSI GetACP GetOEMCP GetCurrentProcess GetLastError GetSystemTime "
        "IsDBCSLeadByteEx SetLastError SetThreadErrorMode Sleep "
        "___lc_codepage_func ___mb_cur_max_func __iob_func _errno localeconv strerror "
        "GetModuleHandleW TlsGetValue",
        // look at memory, move it, or give it back
        "SysFreeString __WSAFDIsSet free memchr memcmp memcpy memmove memset strchr "
        "strlen strncmp "
        "strstr "
        "wcscmp wcslen wcsrchr _wcsicmp",
        // locks and events: a failure would be a mistake in using them
        ("AcquireSRWLockExclusive DeleteCriticalSection EnterCriticalSection "
         "InitializeCriticalSection LeaveCriticalSection ReleaseSRWLockExclusive"),
        "SetEvent _lock _unlock",
        // printing: nobody is told when a diagnostic cannot be printed
        "fputc fwrite perror printf vfprintf",
        // the compiler's substitutes for functions that this runtime has itself
        "_localtime64",
        // ends the process
        "abort",
        // of the start-up code, called while the DLL is loaded
        "SystemFunction036 VirtualProtect VirtualQuery _amsg_exit _initterm",
    };
    for (const char* group : groups) {
        if (is_word_of(group, name)) return true;
    }
    return false;
}

}  // namespace torture
