#include "torture/failures.h"

#include <cerrno>
#include <sstream>

#include "support/matches.h"

namespace torture {
namespace {

// Several rows of one function are several ways in which it fails.
const Failure rows[] = {
    // The runtime's allocating functions, in util.dll and in the C++ runtime.
    {"malloc calloc realloc _strdup", 0, 0, ENOMEM, memory_runs_out},
    // Windows: false, zero or null is the failure.
    {"AdjustTokenPrivileges CopyFileW CreateDirectoryW CreateEventA CreateProcessA DeleteFileA "
     "DeleteFileW FindNextFileW FlushConsoleInputBuffer FormatMessageW GetComputerNameExA "
     "GetComputerNameExW GetCurrentDirectoryA GetCurrentDirectoryW GetDiskFreeSpaceExW "
     "GetEnvironmentVariableW GetExitCodeProcess GetFileVersionInfoA GetFileVersionInfoSizeA "
     "GetHandleInformation GetLogicalDriveStringsA GetLogicalDrives GetModuleFileNameA "
     "GetModuleFileNameW GetModuleHandleA GetProcAddress GetTempFileNameA "
     "GetTempPathA GetTempPathW GetVersionExA GetVolumeInformationA GetVolumeInformationW "
     "LoadLibraryA LockFileEx LookupPrivilegeValueA MultiByteToWideChar OpenProcessToken "
     "OpenSCManagerA OpenServiceA QueryServiceStatus RemoveDirectoryA RemoveDirectoryW ResetEvent "
     "SetConsoleMode VerQueryValueA WideCharToMultiByte WriteFile",
     0, ERROR_ACCESS_DENIED, 0, instead},
    {"GetDriveTypeA GetFileType GetSystemMetrics SysAllocString gethostbyname", 0, 0, 0, instead},
    {"CreateFileW FindFirstFileW GetFileAttributesA GetStdHandle", -1, ERROR_ACCESS_DENIED, 0,
     instead},
    // Windows: the code of an error is the failure.
    {"RegCreateKeyExA RegOpenKeyExA RegQueryValueExA RegQueryValueExW SHCreateDirectoryExA "
     "WNetAddConnection2W WNetCancelConnection2W WNetGetLastErrorA WSAStartup",
     ERROR_ACCESS_DENIED, 0, 0, instead},
    {"CM_Locate_DevNode_ExA CM_Reenumerate_DevNode_Ex", CR_FAILURE, 0, 0, instead},
    // The runtime: -1 or null, and errno.
    {"_dup _filelengthi64 _fstat64 _get_osfhandle _lseek _lseeki64 _mktime64 _putenv _read "
     "_setmode _telli64 _time64 _vscprintf_l _vsnprintf_s_l _waccess _wchdir _wchmod _wopen _write "
     "_wstat64 _wunlink fputs rename system",
     -1, ERROR_ACCESS_DENIED, EACCES, instead},
    {"_fdopen _popen fgets strftime", 0, 0, EMFILE, instead},
    // Sockets
    {"WSAEventSelect gethostname ioctlsocket select", -1, WSAENOTSOCK, 0, instead},
    // Calls that give something back: they do so, and report a failure.
    {"CloseHandle CloseServiceHandle FindClose FreeLibrary UnlockFileEx WSACloseEvent", 0,
     ERROR_INVALID_HANDLE, 0, working},
    {"LocalFree RegCloseKey", ERROR_INVALID_HANDLE, 0, 0, working},
    {"WSACleanup _close _pclose fclose", -1, ERROR_DISK_FULL, ENOSPC, working},
    // Other ways to fail, on which something depends.
    {"CreateFileW", -1, ERROR_SHARING_VIOLATION, 0, instead},
    {"GetComputerNameExA", 0, ERROR_MORE_DATA, 0, instead},
    {"GetCurrentDirectoryA GetTempPathA", 300, 0, 0, instead},  // counted, not written
    {"GetEnvironmentVariableA", 5, 0, 0, instead},              // there is one of that name
    {"GetEnvironmentVariableW", 5000, 0, 0, once},              // counted, not written
    {"GetLogicalDriveStringsA", 2000, 0, 0, once},              // the same
    {"RegQueryValueExA", ERROR_MORE_DATA, 0, 0, instead},
    {"WNetAddConnection2W", ERROR_SESSION_CREDENTIAL_CONFLICT, 0, 0, instead},
    {"WNetAddConnection2W WNetCancelConnection2W", ERROR_EXTENDED_ERROR, 0, 0, instead},
    {"WaitForMultipleObjects", WAIT_FAILED, ERROR_INVALID_HANDLE, 0, once},
    {"WaitForSingleObject", WAIT_FAILED, ERROR_INVALID_HANDLE, 0, instead},
    {"WriteFile", 0, ERROR_LOCK_VIOLATION, 0, instead},
    {"_read _write", -1, 0, EINTR, instead},
    {"_read select", 0, 0, 0, instead},
    {"_wopen", -1, 0, EMFILE, instead},  // the runtime's own table is full
    {"_write", 0, ERROR_DISK_FULL, 0, instead},
    {"rename", -1, ERROR_ALREADY_EXISTS, EEXIST, once},
    {// The C++ runtime: what it allocates comes from malloc, which is failed there.
     "_Z... __cxa_... __gxx_... _Unwind_... "
     // They return what the process has at hand,
     "AreFileApisANSI GetACP GetCurrentProcess GetLastError GetModuleHandleW GetOEMCP "
     "GetSystemTime IsDBCSLeadByteEx SetLastError SetThreadErrorMode Sleep TlsGetValue "
     "___lc_codepage_func ___mb_cur_max_func __iob_func _errno localeconv strerror "
     // or look at memory, move it, or give it back,
     "SysFreeString __WSAFDIsSet _wcsicmp free memchr memcmp memcpy memmove memset strchr strlen "
     "strncmp strstr wcscmp wcslen wcsrchr "
     // or are for locks and events: a failure would be a mistake in using them,
     "AcquireSRWLockExclusive DeleteCriticalSection EnterCriticalSection "
     "InitializeCriticalSection LeaveCriticalSection ReleaseSRWLockExclusive SetEvent _lock "
     "_unlock "
     // or print: nobody is told when a diagnostic cannot be printed,
     "fputc fwrite perror printf vfprintf "
     // or end the process, or convert without a failure,
     "abort _localtime64 "
     // or belong to the start-up code, which runs while the DLL is loaded.
     "SystemFunction036 VirtualProtect VirtualQuery _amsg_exit _initterm",
     0, 0, 0, never},
};

}  // namespace

const std::vector<Failure> failures = [] {
    std::vector<Failure> all;
    for (Failure row : rows) {
        std::istringstream names(row.name);
        while (names >> row.name)
            all.push_back(row);
    }
    return all;
}();

std::vector<const Failure*> failures_of(const char* function) {
    std::vector<const Failure*> all;
    for (const Failure& failure : failures) {
        if (util_test::matches(function, failure.name)) all.push_back(&failure);
    }
    return all;
}

}  // namespace torture
