// What differs for the tool on Windows: names in UTF-16, patterns, drives and backslashes, ends of lines, how files are replaced.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;

const char kSquare[] = "POLYGON((0 0,4 0,4 4,0 4,0 0))\n";
const char kOther[] = "POLYGON((2 0,6 0,6 4,2 4,2 0))\n";
const char kTriangle[] = "v 0 0 0\nv 4 0 0\nv 0 4 1\nf 1 2 3\n";

struct Outcome {
  DWORD code = ~0U;
  std::string out, err;
};

struct Pipe {
  HANDLE read = nullptr, write = nullptr;
};

// Each test has an empty folder, in which the tool runs.
class WindowsTool : public testing::Test {
 protected:
  WindowsTool() {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    tool_ = (fs::path(program).parent_path() / L"zbr.exe").wstring();
    folder_ = fs::temp_directory_path() / (L"zbr-" + std::to_wstring(GetCurrentProcessId()));
    fs::remove_all(folder_);
    fs::create_directory(folder_);
  }
  ~WindowsTool() override { fs::remove_all(folder_); }

  HANDLE Start(const std::wstring& arguments, HANDLE in, HANDLE out, HANDLE err) const {
    std::wstring line = L"\"" + tool_ + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in;
    startup.hStdOutput = out;
    startup.hStdError = err;
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder_.c_str(), &startup, &process));
    CloseHandle(process.hThread);
    return process.hProcess;
  }

  Outcome Run(const std::wstring& arguments, const std::string& input = "") const {
    const fs::path captured = folder_.wstring() + L".captured";
    fs::create_directory(captured);
    std::ofstream(captured / "in", std::ios::binary) << input;
    const HANDLE files[] = {Open(captured / "in", OPEN_EXISTING), Open(captured / "out", CREATE_ALWAYS),
                            Open(captured / "err", CREATE_ALWAYS)};
    const HANDLE process = Start(arguments, files[0], files[1], files[2]);
    for (const HANDLE file : files) CloseHandle(file);
    WaitForSingleObject(process, INFINITE);
    Outcome outcome;
    GetExitCodeProcess(process, &outcome.code);
    CloseHandle(process);
    outcome.out = Contents(captured / "out");
    outcome.err = Contents(captured / "err");
    fs::remove_all(captured);
    return outcome;
  }

  void Write(const std::wstring& name, const std::string& text) const { std::ofstream(folder_ / name, std::ios::binary) << text; }
  std::string Read(const std::wstring& name) const { return Contents(folder_ / name); }
  std::set<std::wstring> Files() const {
    std::set<std::wstring> names;
    for (const auto& entry : fs::directory_iterator(folder_)) names.insert(entry.path().filename().wstring());
    return names;
  }

  static std::string Contents(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  fs::path folder_;

 private:
  static HANDLE Open(const fs::path& path, DWORD creation) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, creation, 0,
                       nullptr);
  }

  std::wstring tool_;
};

std::string Utf8(const std::u8string& text) {
  return {text.begin(), text.end()};
}

TEST_F(WindowsTool, NamesAndTitlesAreUnicode) {
  Write(L"Gehäuse 図面.obj", kTriangle);
  const Outcome drawn = Run(LR"(draw "Gehäuse 図面.obj" -o 出力.svg --sheet first --title "★ \"größer\" C:\\")");
  EXPECT_EQ(drawn.code, 0U) << drawn.err;
  EXPECT_NE(Read(L"出力.svg").find(Utf8(u8"★ &quot;größer&quot; C:\\")), std::string::npos) << Read(L"出力.svg").substr(0, 400);
  EXPECT_NE(Run(L"info \"Gehäuse 図面.obj\"").out.find(Utf8(u8"Gehäuse 図面.obj")), std::string::npos);
  EXPECT_EQ(Run(L"info 図.obj").err, Utf8(u8"図.obj: cannot open: No such file or directory\n"));
}

TEST_F(WindowsTool, PatternsStandForFiles) {
  fs::create_directory(folder_ / L"Teile");
  for (const wchar_t* folder : {L"", L"Teile\\"}) {
    Write(folder + std::wstring(L"ä1.WKT"), kSquare);
    Write(folder + std::wstring(L"ä2.wkt"), kOther);
    Write(folder + std::wstring(L"ä3.wkt.old"), "nothing");
  }
  const std::string expected = Run(L"bool --op a-b ä1.WKT ä2.wkt -o - --format wkt").out;
  EXPECT_NE(expected, "");
  for (const wchar_t* pattern : {L"*.wkt", L"Ä?.wkt", L"Teile\\*.wkt", L".\\Teile/ä*", L"\"\"*.wk*t"}) {
    const Outcome outcome = Run(std::wstring(L"bool --op a-b -o - --format wkt ") + pattern);
    const bool isAll = std::wstring(pattern).back() == L'*';  // the old file as well
    EXPECT_EQ(outcome.out, isAll ? "" : expected) << outcome.err;
  }
  EXPECT_EQ(Run(L"bool --op union \"*.wkt\"").err, "*.wkt: no file matches the pattern\n");
  EXPECT_EQ(Run(L"bool --op union *.dxf").err, "*.dxf: no file matches the pattern\n");
}

TEST_F(WindowsTool, DrivesBackslashesAndLongPaths) {
  Write(L"a.wkt", kSquare);
  const std::string expected = Run(L"nest a.wkt").out;
  EXPECT_EQ(Run(L"nest \"" + (folder_ / "a.wkt").wstring() + L"\"").out, expected);
  EXPECT_EQ(Run(L"nest \"" + (folder_ / "a.wkt").generic_wstring() + L"\"").out, expected);
  std::wstring deep = folder_.wstring();
  for (int i = 0; i < 4; ++i) {
    deep += L"\\" + std::wstring(100, L'x');
    EXPECT_TRUE(CreateDirectoryW((L"\\\\?\\" + deep).c_str(), nullptr));
  }
  const std::wstring relative = deep.substr(folder_.wstring().size() + 1) + L"\\b.wkt";
  EXPECT_EQ(Run(L"nest a.wkt -o " + relative).err, "");
  EXPECT_EQ(Run(L"nest " + relative).out, expected);
  // The library's own way to remove folders ends at the limit.
  EXPECT_TRUE(DeleteFileW((L"\\\\?\\" + deep + L"\\b.wkt").c_str()));
  for (; deep.size() > folder_.wstring().size(); deep.resize(deep.rfind(L'\\')))
    EXPECT_TRUE(RemoveDirectoryW((L"\\\\?\\" + deep).c_str()));
}

TEST_F(WindowsTool, EndsOfLinesAreTheFiles) {
  Write(L"lf.obj", kTriangle);
  std::string text;
  for (const char c : std::string(kTriangle)) text += c == '\n' ? std::string("\r\n") : std::string(1, c);
  Write(L"crlf.obj", text);
  EXPECT_EQ(Run(L"draw lf.obj -o a.svg --title x").err, "");
  EXPECT_EQ(Run(L"draw crlf.obj -o b.svg --title x").err, "");
  EXPECT_EQ(Read(L"a.svg"), Read(L"b.svg"));
  EXPECT_EQ(Read(L"a.svg").find('\r'), std::string::npos);
  EXPECT_EQ(Run(L"draw lf.obj -o - --format svg --title x").out, Read(L"a.svg"));
  // A byte that ends texts on some consoles is one like any other, where files that are no text are told from others already.
  const std::string comment = std::string(64, '#') + "\x1a\r\n";
  EXPECT_EQ(Run(L"draw - --model-format obj -o - --format svg --title x", comment + text).out, Read(L"a.svg"));
}

TEST_F(WindowsTool, FilesAreReplacedOrLeftAlone) {
  Write(L"a.wkt", kSquare);
  Write(L"out.wkt", "old");
  Write(L"locked.wkt", "old");
  fs::create_directory(folder_ / L"folder.wkt");
  const std::wstring locked = (folder_ / L"locked.wkt").wstring();
  SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(Run(L"nest a.wkt -o out.wkt -o locked.wkt").err, "locked.wkt: is read-only\n");
  EXPECT_EQ(Run(L"nest a.wkt -o out.wkt -o folder.wkt").err, "folder.wkt: is a directory\n");
  EXPECT_EQ(Run(L"nest a.wkt -o new.wkt -o .\\NEW.wkt").err, ".\\NEW.wkt: named twice as output\n");
  EXPECT_EQ(Run(L"nest a.wkt -o new.wkt -o none\\a.wkt").err, "none\\a.wkt: cannot write: No such file or directory\n");
  EXPECT_EQ(Read(L"out.wkt"), "old");
  EXPECT_EQ(Run(L"nest a.wkt -o out.wkt --format wkt -o NUL").err, "");
  EXPECT_EQ(Read(L"out.wkt").substr(0, 7), "POLYGON");
  SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(Files(), (std::set<std::wstring>{L"a.wkt", L"folder.wkt", L"locked.wkt", L"out.wkt"}));
}

// While standard output is not read from, the other output is on disk under another name.
TEST_F(WindowsTool, NothingIsLeftOfARunThatIsEnded) {
  std::string many;
  for (int i = 0; i < 20000; ++i)
    many += std::to_string(3 * i) + " 0\n" + std::to_string(3 * i + 1) + " 0\n" + std::to_string(3 * i) + " 1\n\n";
  Write(L"a.txt", many);
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  Pipe pipe;
  ASSERT_TRUE(CreatePipe(&pipe.read, &pipe.write, &inherited, 0));
  const HANDLE process = Start(L"nest a.txt --format text -o out.txt -o -", GetStdHandle(STD_INPUT_HANDLE), pipe.write, pipe.write);
  char byte = 0;
  DWORD count = 0;
  ASSERT_TRUE(ReadFile(pipe.read, &byte, 1, &count, nullptr));
  EXPECT_EQ(Files().size(), 2U);
  EXPECT_EQ(Files().count(L"out.txt"), 0U);
  TerminateProcess(process, 1);
  WaitForSingleObject(process, INFINITE);
  EXPECT_EQ(Files(), std::set<std::wstring>{L"a.txt"});
  for (const HANDLE handle : {process, pipe.read, pipe.write}) CloseHandle(handle);
}

}  // namespace
