#include "foundation/atomic_file.h"
#include "foundation/files.h"
#include "foundation/paths.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Outils_Fichiers;
namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(Paths, RelativePathsComeBack) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"/p/a", "/p/a/x.tarin", ".\\x.tarin"},
        {"/p/a/", "/p/a/data/x.tarin", ".\\data\\x.tarin"},
        {"/p/a", "/p/x.tarin", "..\\x.tarin"},
        {"/p/a/b", "/p/c/d/x y.tarin", "..\\..\\c\\d\\x y.tarin"},
        {"/p/a", "/p/ab/x", "..\\ab\\x"},
        {"/p/a", "/P/a/x", "..\\..\\P\\a\\x"},
        {"/", "/p/\xC3\xA9.tarin", ".\\p\\\xC3\xA9.tarin"},
        {"/p/./q/../a", "/p/a/../b/x", "..\\b\\x"}};
    for (const auto& [from, to, relative] : rows) {
        EXPECT_EQ(RelativePathTo(from, to), relative);
        EXPECT_EQ(Combine(from, relative), fs::path(to).lexically_normal());
    }
    EXPECT_FALSE(RelativePathTo("p", "/p/x"));
    EXPECT_FALSE(RelativePathTo("/p", "x"));
    EXPECT_FALSE(RelativePathTo("/p", "/p/a\\b"));
    EXPECT_FALSE(RelativePathTo("/p", "/proc/none/x")) << "another volume";
}

TEST(Paths, UnderstandsPathsOfTheOriginalPlatform) {
    EXPECT_EQ(Combine("/p/a", "..\\b/./c\\x"), "/p/b/c/x");
    EXPECT_EQ(Combine("/p", "..\\..\\..\\x"), "/x");
    EXPECT_EQ(Combine("/p/a", "."), "/p/a");
    EXPECT_EQ(Combine("/p/a/", ".."), "/p");
    for (const char* text : {"x", ".\\x", "..\\x", "xy:z", ""}) EXPECT_TRUE(IsRelativePath(text)) << text;
    for (const char* text : {"/x", "\\x", "\\\\server\\x", "C:\\x", "c:x"})
        EXPECT_FALSE(IsRelativePath(text)) << text;
    EXPECT_TRUE(SamePath("/p/A/x.TARIN", "/P/a/./X.tarin"));
    EXPECT_FALSE(SamePath("/p/a", "/p/b"));
    EXPECT_EQ(WithExtension("/a/b.tarprj", ".tarout"), "/a/b.tarout");
}

class Files : public testing::Test {
  protected:
    Files() {
        m_file = m_folder / "project.tarprj";
        WriteWholeFile(m_file, m_old);
    }

    std::ptrdiff_t CountEntries() const {
        return std::distance(fs::directory_iterator(m_folder.GetPath()), fs::directory_iterator());
    }

    test::CTemporaryFolder m_folder;
    fs::path m_file;
    const Bytes m_old = Bytes(100, 1);
    const Bytes m_new = Bytes(5000, 2);
};

TEST_F(Files, SaveReplacesContentAndKeepsMode) {
    ::chmod(m_file.c_str(), 0640);
    EXPECT_TRUE(SaveAtomically(m_file, m_new));
    EXPECT_EQ(ReadWholeFile(m_file, 5000), m_new);
    EXPECT_EQ(fs::status(m_file).permissions(), fs::perms(0640));
    const fs::path longest = m_folder / std::string(255, 'n');
    EXPECT_TRUE(SaveAtomically(longest, {}));
    EXPECT_EQ(ReadWholeFile(longest, 0), Bytes());
    EXPECT_EQ(CountEntries(), 2);
}

TEST_F(Files, SaveFollowsLinks) {
    const fs::path folder = m_folder / "links";
    fs::create_directory(folder);
    fs::create_symlink("../project.tarprj", folder / "one");
    fs::create_symlink("one", folder / "two");
    EXPECT_TRUE(SaveAtomically(folder / "two", m_new));
    EXPECT_TRUE(fs::is_symlink(folder / "two") && fs::is_symlink(folder / "one"));
    EXPECT_EQ(ReadWholeFile(m_file, 5000), m_new);
    fs::create_symlink("ring", folder / "ring");
    EXPECT_FALSE(SaveAtomically(folder / "ring", m_new));
}

TEST_F(Files, PiecesBecomeAFileInOneStep) {
    fs::create_symlink(m_file, m_folder / "link");
    for (const bool committed : {false, true}) {
        CAtomicFile file;
        ASSERT_TRUE(file.Open(m_folder / "link"));
        EXPECT_EQ(file.GetTarget(), m_file);
        for (int i = 0; i < 3; ++i) EXPECT_TRUE(file.Write(m_new));
        EXPECT_EQ(ReadWholeFile(m_file, 5000), m_old);
        EXPECT_TRUE(!committed || file.Commit());
    }
    EXPECT_EQ(fs::file_size(m_file), 3 * m_new.size());
    EXPECT_EQ(CountEntries(), 2);
}

TEST_F(Files, FailedSaveKeepsTheOldFile) {
    // A limit on the size of files imitates a full disk.
    rlimit former;
    ::getrlimit(RLIMIT_FSIZE, &former);
    const rlimit small{1000, former.rlim_max};
    const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &small);
    const bool saved = SaveAtomically(m_file, m_new);
    ::setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, formerHandler);
    EXPECT_FALSE(saved);
    EXPECT_EQ(ReadWholeFile(m_file, 5000), m_old);

    EXPECT_FALSE(SaveAtomically(m_folder / "none" / "x", m_new));
    EXPECT_FALSE(SaveAtomically(m_folder.GetPath(), m_new));
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(Files, KilledSaveLeavesNothing) {
    const int nameless = ::open(m_folder.GetPath().c_str(), O_TMPFILE | O_WRONLY, 0600);
    if (nameless < 0) GTEST_SKIP() << "the file system has no files without a name";
    ::close(nameless);
    // The write beyond the limit kills the child.
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit small{1000, 1000}, none{0, 0};
        ::setrlimit(RLIMIT_CORE, &none);
        ::setrlimit(RLIMIT_FSIZE, &small);
        std::signal(SIGXFSZ, SIG_DFL);
        SaveAtomically(m_file, m_new);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(ReadWholeFile(m_file, 5000), m_old);
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(Files, ReadsSmallRegularFilesOnly) {
    EXPECT_EQ(ReadWholeFile(m_file, 100), m_old);
    EXPECT_FALSE(ReadWholeFile(m_file, 99));
    EXPECT_FALSE(ReadWholeFile(m_folder.GetPath(), 1000));
    EXPECT_FALSE(ReadWholeFile(m_folder / "none", 1000));
    const fs::path pipe = m_folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(ReadWholeFile(pipe, 1000)); // and does not wait for a writer
    EXPECT_FALSE(SaveAtomically(pipe, m_new));
    // Its size reads as 0, the content comes all the same.
    EXPECT_FALSE(ReadWholeFile("/proc/self/status", 100000).value_or(Bytes()).empty());
    EXPECT_FALSE(ReadWholeFile("/proc/self/status", 10));
}

TEST_F(Files, TemporaryFilesHaveUniqueNames) {
    const auto first = CreateTemporaryFile("mvx");
    const auto second = CreateTemporaryFile("mvx");
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    EXPECT_TRUE(fs::is_empty(*first));
    fs::remove(*first);
    fs::remove(*second);
    EXPECT_EQ(GetExecutablePath().filename(), "test_foundation");
}

} // namespace
