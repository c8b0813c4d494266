/*
** tests/platform/settings_file_test.cpp: what a settings write does to the file itself:
** each line's own break, a link written through to its target, a read-only file left
** alone, and the temporary file of a killed write reused.
*/
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "platform/driver.h"
#include "support.h"

namespace fs = std::filesystem;
using testing_support::readFile;
using testing_support::TempDir;
using testing_support::writeFile;

namespace {

TEST(SettingsFile, EachLineKeepsItsOwnBreak)
{
    struct Row {
        const char *before, *key, *value, *after;
    } rows[] = {
        /* a stray CR before a line's break stays; a new line takes the first line's break */
        {"[tervan]\r\nA=1\nB=x\r\r\n", "C", "2", "[tervan]\r\nA=1\nB=x\r\r\nC=2\r\n"},
        {"[tervan]\nA=1\r\nB=2", "A", "3", "[tervan]\nA=3\r\nB=2\n"},
        {"[tervan]\nA=1\r\n\r\n[other]\r\nk=v", "A", nullptr, "[tervan]\n\r\n[other]\r\nk=v\n"},
        /* a lone CR at the end of the file is no line break for the lines added after it */
        {"; note\r", "A", "1", "; note\n\n[tervan]\nA=1\n"},
        /* a new file; a key added after the section's last line, before its blank ones */
        {nullptr, "freqSteps", "50", "[tervan]\nfreqSteps=50\n"},
        {"[tervan]\n; only a comment\n\n[b]\n", "k", "v", "[tervan]\n; only a comment\nk=v\n\n[b]\n"},
        /* values a reader would trim or unquote are stored in quotes, and read back whole */
        {"[tervan]\n", " A ", " 1 ", "[tervan]\nA=\" 1 \"\n"},
        {"[tervan]\n", "A", "'1'", "[tervan]\nA=\"'1'\"\n"},
    };
    TempDir dir;
    for (const Row &row : rows) {
        fs::remove(dir.file("tervan.ini"));
        if (row.before)
            writeFile(dir.file("tervan.ini"), row.before);
        EXPECT_TRUE(WritePrivateProfileStringA("tervan", row.key, row.value, dir.file("tervan.ini").c_str()));
        EXPECT_EQ(readFile(dir.file("tervan.ini")), row.after) << row.after;
        char value[64];
        GetPrivateProfileStringA("tervan", row.key, "-", value, sizeof value, dir.file("tervan.ini").c_str());
        EXPECT_STREQ(value, row.value ? row.value : "-") << row.after;
    }
}

TEST(SettingsFile, LinkReadOnlyFileAndLeftoverTemporary)
{
    platform::resetWindowing();
    TempDir dir;
    std::string target = dir.file("real.ini"), link = dir.file("tervan.ini");
    writeFile(target, "[tervan]\nk=0\n");
    ASSERT_EQ(symlink("real.ini", link.c_str()), 0);
    /* the leftover of a write killed before its rename, as large as the file it was for */
    writeFile(dir.file(".real.ini.tmp"), std::string(4096, 'x'));

    EXPECT_TRUE(WritePrivateProfileStringA("tervan", "k", "1", link.c_str()));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(readFile(target), "[tervan]\nk=1\n");
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(dir.path))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"real.ini", "tervan.ini"})) << "no temporary file is left";

    ASSERT_EQ(chmod(target.c_str(), 0444), 0);
    EXPECT_FALSE(WritePrivateProfileStringA("tervan", "k", "2", link.c_str()));
    EXPECT_EQ(readFile(target), "[tervan]\nk=1\n");
    EXPECT_EQ(platform::transcript(),
              std::vector<std::string>{"[error] Cannot write settings file " + link + ": Permission denied"});
    EXPECT_EQ(platform::settingsWriteFailures(), 1);
    platform::resetWindowing();
}

}
