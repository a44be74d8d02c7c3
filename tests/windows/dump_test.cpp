// The dump of a triangle as a debugger gets it: the test starts itself again, as the program to be debugged, and reads the bytes of
// every text that arrives. What they must be is told in Unicode here and put into the code page by the system.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "hiddenline/scenes.h"

namespace {

// What the debugged program does; cases by number.
void Dump(int number) {
  const std::vector<Corners> triangles = {
      {ZBR_PT3(0, 0, 0), ZBR_PT3(4, 0, 0.5), ZBR_PT3(4, 0, 2)},  // seen edge-on
      {ZBR_PT3(0, 0, 0), ZBR_PT3(4, 0, 0), ZBR_PT3(0, 1, 500)},  // nearly so
      {ZBR_PT3(0, 0, 0), ZBR_PT3(0, 4, 0), ZBR_PT3(4, 0, 0)},    // clockwise
  };
  if (number == 0) return ZBR_HL_TRI().OutputInfo("", -1, 2);
  const bool isLong = number > static_cast<int>(triangles.size());
  Drawing drawing = DrawTriangles({triangles[isLong ? 2 : static_cast<std::size_t>(number) - 1]});
  std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
  Classify(shells[0]);
  shells[0].index = 7;
  ZBR_HL_TRI& t = drawing.bodies[0][0];
  if (isLong) t.intvl_v[0].assign(2000, t.intvl_v[0].front());
  t.OutputInfo("title ", 3, isLong ? 4 : -1);
}

// The texts that a run sends to its debugger.
std::vector<std::string> TextsOf(int number) {
  char program[MAX_PATH];
  GetModuleFileNameA(nullptr, program, sizeof program);
  std::string command = std::string("\"") + program + "\" --dump " + std::to_string(number);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  std::vector<std::string> texts;
  if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, DEBUG_ONLY_THIS_PROCESS, nullptr, nullptr, &startup,
                     &process) == 0)
    return texts;
  DEBUG_EVENT event{};
  while (event.dwDebugEventCode != EXIT_PROCESS_DEBUG_EVENT && WaitForDebugEvent(&event, 60000) != 0) {
    if (event.dwDebugEventCode == OUTPUT_DEBUG_STRING_EVENT) {
      const OUTPUT_DEBUG_STRING_INFO& info = event.u.DebugString;
      std::string text(info.nDebugStringLength, '\0');
      SIZE_T read = 0;
      ReadProcessMemory(process.hProcess, info.lpDebugStringData, text.data(), text.size(), &read);
      texts.push_back(text.substr(0, text.find('\0')));
      EXPECT_EQ(info.fUnicode, 0);
    }
    const bool isException = event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT &&
                             event.u.Exception.ExceptionRecord.ExceptionCode != static_cast<DWORD>(EXCEPTION_BREAKPOINT);
    ContinueDebugEvent(event.dwProcessId, event.dwThreadId, isException ? DBG_EXCEPTION_NOT_HANDLED : DBG_CONTINUE);
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return texts;
}

std::string ShiftJis(const std::wstring& text) {
  constexpr UINT kShiftJis = 932;
  const int length = static_cast<int>(text.size());
  BOOL lost = FALSE;
  std::string bytes(4 * text.size(), '\0');
  bytes.resize(static_cast<std::size_t>(
      WideCharToMultiByte(kShiftJis, 0, text.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr, &lost)));
  EXPECT_FALSE(lost);
  return bytes;
}

TEST(Dump, IsOneTextInCodePage932) {
  const std::wstring stars = L"*************************\n";
  const std::wstring flags = L"adj : -1 , -1 , -1\nprofile : -1 , -1 , -1\n";
  const std::wstring end = L"********************\n\n";
  const std::vector<std::wstring> expected = {
      stars + L"idx : -1 e(2), shell : -1  ☆疑似vertical\n" + flags +
          L"pt[0] : 0 , 0 , 0\npt[1] : 0 , 0 , 0\npt[2] : 0 , 0 , 0\nnormal : 0 , 0 , 0\ndispj : 0 , 0 , 0\n\nintvl_v[0] "
          L"\nintvl_v[1] "
          L"\nintvl_v[2] \n" +
          end,
      stars + L"title idx : 0 s(3), shell : 7  ★vertical  ■右回り \n" + flags +
          L"pt[0] : 0 , 0 , 0\npt[1] : 4 , 0 , 0.5\npt[2] : 4 , 0 , 2\nnormal : 0 , -1 , 0\ndispj : 1 , 1 , 1\ninvalid , vertical "
          L", "
          L"general , \nintvl_v[0] \nintvl_v[1] \nintvl_v[2] [ 0 , 1 ] , \n" +
          end,
      stars + L"title idx : 0 s(3), shell : 7  ☆疑似vertical  □左回り \n" + flags +
          L"pt[0] : 0 , 0 , 0\npt[1] : 4 , 0 , 0\npt[2] : 0 , 1 , 500\nnormal : 0 , -0.999998 , 0.002\ndispj : 1 , 1 , 1\ngeneral "
          L", "
          L"general , general , \nintvl_v[0] [ 0 , 1 ] , \nintvl_v[1] [ 0 , 1 ] , \nintvl_v[2] [ 0 , 1 ] , \n" +
          end,
      stars + L"title idx : 0 s(3), shell : 7  ■右回り \n" + flags +
          L"pt[0] : 0 , 0 , 0\npt[1] : 0 , 4 , 0\npt[2] : 4 , 0 , 0\nnormal : 0 , 0 , -1\ndispj : 1 , 1 , 1\ngeneral , general , "
          L"general , \nintvl_v[0] [ 0 , 1 ] , \nintvl_v[1] [ 0 , 1 ] , \nintvl_v[2] [ 0 , 1 ] , \n" +
          end,
  };
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(TextsOf(static_cast<int>(i)), std::vector<std::string>{ShiftJis(expected[i])}) << "case " << i;
  }
}

// A debugger gets it whole; a viewer without one, through a buffer of 4 KiB, gets its beginning.
TEST(Dump, IsOneTextWhenLong) {
  const std::vector<std::string> texts = TextsOf(4);
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_GT(texts[0].size(), 20000U);
  EXPECT_TRUE(texts[0].ends_with("********************\n\n"));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::string(argv[1]) == "--dump") {
    Dump(std::atoi(argv[2]));
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
