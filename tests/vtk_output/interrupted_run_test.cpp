#include <gtest/gtest.h>

#ifndef _WIN32

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "tests/support/output_capture.h"
#include "tests/vtk_output/output_support.h"
#include "vtk_output/vtk_xml.h"

namespace {

/// Runs `action` in a child process that is then killed, so that no destructor runs.
template <class Action>
void RunAndKill(Action action) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const OutputCapture quiet;
        action();
        std::raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST(InterruptedRun, KeepsEveryRecordWrittenSoFar) {
    TempDirectory dir;

    RunAndKill([&] {
        auto* one = new Tetrahedron;
        auto* tool = new CKVX_ART_VTK_Tool;
        tool->Initialize(Chars(dir.Text()), Chars("Run"), 0);
        tool->newBlockData(&one->block);
        for (int step = 1; step <= 3; ++step) {
            tool->OutputRun(step, step);
        }
    });

    EXPECT_EQ(ReadFile(dir.Path() / "Run.vtkcollection_0"),
              "1\t1\t0\t1\tRun_0/Run_Itr1_T1_P0_B1.vtu\n"
              "2\t2\t0\t1\tRun_0/Run_Itr2_T2_P0_B1.vtu\n"
              "3\t3\t0\t1\tRun_0/Run_Itr3_T3_P0_B1.vtu\n");
}

TEST(InterruptedRun, KeepsEveryLineOfTheSeriesWrittenSoFar) {
    TempDirectory dir;

    RunAndKill([&] {
        auto* tool = new CKVX_ART_VTK_Tool;
        tool->Initialize(Chars(dir.Text()), Chars("Run"), 0);
        tool->pvdWriter->openPvd();
        WriteFile(dir.Path() / "x.vtkcollection", "1 0.5 2 3 f\n");
        tool->pvdWriter->mergeCollectionFile("x.vtkcollection");
    });

    const std::string text = ReadFile(dir.Path() / "Run.pvd");
    const std::string last = "<DataSet timestep=\"0.5\" group=\"3\" part=\"2\" file=\"f\"/>\n";
    ASSERT_GT(text.size(), last.size());
    EXPECT_EQ(text.substr(text.size() - last.size()), last);
}

TEST(InterruptedRun, KeepsEveryWholeLineOfAStepFile) {
    TempDirectory dir;
    const std::string path = dir.Text() + "/file.vtu";

    // A row in unreadable memory kills the writer in the middle of the connectivity.
    void* unreadable = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(unreadable, MAP_FAILED);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGSEGV, [](int) { std::raise(SIGKILL); });
        Tetrahedron one;
        one.cells.push_back(MeshCell(static_cast<int*>(unreadable), 4));
        writeVTUFile(path, &one.block);
        _exit(0);
    }
    munmap(unreadable, 4096);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);

    const std::string text = ReadFile(path);
    const std::string last = "\t\t\t\t0 1 2 3\n";
    ASSERT_GT(text.size(), last.size());
    EXPECT_EQ(text.substr(text.size() - last.size()), last);
}

}  // namespace

#endif
