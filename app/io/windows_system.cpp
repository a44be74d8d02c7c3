// The tool on Windows.
//
// Files are written through a handle that says, from the first moment on, that the file goes when the handle is closed. Whatever
// ends the program, Ctrl-C or the task manager, the system closes its handles, and nothing is left behind. Publishing takes that
// back and renames the file through the same handle.
#include <zbr-formats/files.h>

#include <windows.h>
// After windows.h, which it needs.
#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include "app/io/system.h"

namespace tool {
namespace {

constexpr DWORD kBlock = 1U << 15U;  // of a write; consoles refuse more than 64 KiB
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

struct Close {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, Close>;

// In the words that the C library has for it, as on other systems.
[[noreturn]] void FailWith(DWORD error, const std::string& name, const char* what) {
  const std::error_code code(static_cast<int>(error), std::system_category());
  throw Failure(name, what + std::string(": ") + code.default_error_condition().message());
}

Handle Open(const std::wstring& path, DWORD access, DWORD creation, DWORD flags = 0) {
  const HANDLE handle = CreateFileW(path.c_str(), access, kShareAll, nullptr, creation, flags, nullptr);
  return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

void WriteAll(HANDLE handle, const std::string& contents, const std::string& name) {
  DWORD written = 0;
  for (std::size_t done = 0; done < contents.size(); done += written) {
    const auto length = static_cast<DWORD>(std::min<std::size_t>(contents.size() - done, kBlock));
    if (WriteFile(handle, contents.data() + done, length, &written, nullptr) == 0) FailWith(GetLastError(), name, "cannot write");
  }
}

void DeleteOnClose(HANDLE handle, bool isWanted) {
  FILE_DISPOSITION_INFO disposition{};
  disposition.DeleteFile = static_cast<BOOLEAN>(isWanted);
  SetFileInformationByHandle(handle, FileDispositionInfo, &disposition, sizeof disposition);
}

bool Rename(HANDLE handle, const std::wstring& target) {
  const std::size_t length = target.size() * sizeof(wchar_t);
  std::vector<std::byte> memory(sizeof(FILE_RENAME_INFO) + length);
  auto* const info = reinterpret_cast<FILE_RENAME_INFO*>(memory.data());
  info->ReplaceIfExists = TRUE;
  info->FileNameLength = static_cast<DWORD>(length);
  std::memcpy(info->FileName, target.data(), length);
  return SetFileInformationByHandle(handle, FileRenameInfo, info, static_cast<DWORD>(memory.size())) != 0;
}

std::wstring FullPath(const std::wstring& path) {
  std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  full.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  return full;
}

// Where a link leads to; any other path as it is.
std::wstring FollowLink(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return path;
  const Handle file = Open(path, 0, OPEN_EXISTING);
  if (!file) return path;
  std::wstring target(GetFinalPathNameByHandleW(file.get(), nullptr, 0, 0), L'\0');
  target.resize(GetFinalPathNameByHandleW(file.get(), target.data(), static_cast<DWORD>(target.size()), 0));
  return target.empty() ? path : target;
}

UINT g_codePageBefore = 0;

BOOL WINAPI PutCodePageBack(DWORD /*event*/) {
  if (g_codePageBefore != 0) SetConsoleOutputCP(g_codePageBefore);
  return FALSE;  // whoever else listens goes on, at last to the end of the program
}

}  // namespace

void PrepareProcess() {
  for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  g_codePageBefore = GetConsoleOutputCP();
  if (g_codePageBefore == 0) return;
  std::atexit([] { PutCodePageBack(0); });
  SetConsoleCtrlHandler(PutCodePageBack, TRUE);
  SetConsoleOutputCP(CP_UTF8);
  // The line of progress is erased by a sequence of characters.
  const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode(console, &mode) != 0) SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

bool IsTerminalOnStandardError() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

void IgnoreClosedPipes() {}  // no signals here

bool NameOneFile(const std::string& a, const std::string& b) {
  const std::wstring first = zbr::formats::PathOf(a).wstring();
  const std::wstring second = zbr::formats::PathOf(b).wstring();
  if (CompareStringOrdinal(FullPath(first).c_str(), -1, FullPath(second).c_str(), -1, TRUE) == CSTR_EQUAL) return true;
  // Short names and links are further ways to spell a name.
  BY_HANDLE_FILE_INFORMATION infos[2];
  const Handle files[2] = {Open(first, 0, OPEN_EXISTING), Open(second, 0, OPEN_EXISTING)};
  if (!files[0] || !files[1]) return false;
  if (GetFileInformationByHandle(files[0].get(), &infos[0]) == 0 || GetFileInformationByHandle(files[1].get(), &infos[1]) == 0)
    return false;
  const auto identity = [](const BY_HANDLE_FILE_INFORMATION& info) {
    return std::vector<DWORD>{info.dwVolumeSerialNumber, info.nFileIndexHigh, info.nFileIndexLow};
  };
  return identity(infos[0]) == identity(infos[1]);
}

TargetKind KindOfTarget(const std::string& name) {
  const std::wstring path = zbr::formats::PathOf(name).wstring();
  if (path.starts_with(L"\\\\.\\")) return TargetKind::kDevice;  // opening a pipe would be taken for its one use
  const DWORD attributes = GetFileAttributesW(path.c_str());
  const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
  if (isThere && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return TargetKind::kDirectory;
  if (isThere && (attributes & FILE_ATTRIBUTE_READONLY) != 0) return TargetKind::kReadOnly;
  const Handle file = Open(path, GENERIC_WRITE, OPEN_EXISTING);
  if (file) return GetFileType(file.get()) == FILE_TYPE_DISK ? TargetKind::kFile : TargetKind::kDevice;
  if (!isThere) return TargetKind::kNew;
  return GetLastError() == ERROR_ACCESS_DENIED ? TargetKind::kReadOnly : TargetKind::kFile;
}

void WriteDirectly(const std::string& name, const std::string& contents) {
  if (name == "-") return WriteAll(GetStdHandle(STD_OUTPUT_HANDLE), contents, "standard output");
  const Handle file = Open(zbr::formats::PathOf(name).wstring(), GENERIC_WRITE, OPEN_EXISTING);
  if (!file) FailWith(GetLastError(), name, "cannot open");
  WriteAll(file.get(), contents, name);
}

NewFile::NewFile(const std::string& name, const std::string& contents) : name_(name) {
  const std::wstring target = FollowLink(zbr::formats::PathOf(name).wstring());
  target_ = zbr::formats::NameOf(target);
  Handle file;
  DWORD error = ERROR_FILE_EXISTS;
  for (DWORD number = GetCurrentProcessId(); !file && error == ERROR_FILE_EXISTS; ++number) {
    file = Open(target + L'.' + std::to_wstring(number), GENERIC_WRITE | DELETE, CREATE_NEW);
    error = GetLastError();
  }
  if (!file) FailWith(error, name, "cannot write");
  DeleteOnClose(file.get(), true);
  WriteAll(file.get(), contents, name);
  handle_ = file.release();
}

NewFile::NewFile(NewFile&& other) noexcept
    : name_(std::move(other.name_)), target_(std::move(other.target_)), handle_(std::exchange(other.handle_, nullptr)) {}

NewFile::~NewFile() {
  if (handle_ != nullptr) CloseHandle(handle_);
}

void NewFile::Publish() {
  DeleteOnClose(handle_, false);
  if (!Rename(handle_, FullPath(zbr::formats::PathOf(target_).wstring()))) {
    const DWORD error = GetLastError();
    DeleteOnClose(handle_, true);
    FailWith(error, name_, "cannot write");
  }
  CloseHandle(std::exchange(handle_, nullptr));
}

}  // namespace tool
