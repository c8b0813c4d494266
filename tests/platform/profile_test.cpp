/*
** tests/platform/profile_test.cpp: settings files read and written through the private-profile
** calls: values, defaults, truncation, writes that keep the rest of the file and each line's
** own break, a link written through to its target, and writes refused with the reason.
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
using testing_support::writeFile;

namespace {

class Profile : public ::testing::Test {
protected:
    void SetUp() override { platform::resetWindowing(); }

    std::string get(const char *section, const char *key, const char *fallback = "", DWORD size = 64)
    {
        std::vector<char> buffer(size + 1, 'x');
        DWORD n = GetPrivateProfileStringA(section, key, fallback, buffer.data(), size, path.c_str());
        EXPECT_EQ(buffer[n], '\0');
        return std::string(buffer.data(), n);
    }

    testing_support::TempDir dir;
    std::string folder = dir.path, path = dir.file("tervan.ini");
};

const char *const settings =
    "; Tervan settings\n"
    "[Display]\n"
    "width = 800\n"
    "\n"
    "[tervan]\n"
    "# units\n"
    "phaseUnits=212\n"
    "  freqStart =  0.1  \n"
    "title=\"Bode Plot\"\n"
    "\n"
    "[Other]\n"
    "x=1\n";

TEST_F(Profile, ReadsValuesWithoutRegardToCaseTrimmedAndUnquoted)
{
    /* A missing or unreadable file reads as empty. */
    EXPECT_EQ(get("tervan", "freqStart", "0.1"), "0.1");
    EXPECT_EQ(GetPrivateProfileStringA("tervan", "x", "d", nullptr, 10, path.c_str()), 0u);
    path = folder;
    EXPECT_EQ(get("tervan", "freqStart", "7"), "7");
    path = dir.file("tervan.ini");
    writeFile(path, settings);
    EXPECT_EQ(get("tervan", "phaseUnits"), "212");
    EXPECT_EQ(get("TERVAN", "FREQSTART"), "0.1");
    EXPECT_EQ(get("tervan", "title"), "Bode Plot");
    EXPECT_EQ(get("display", "width"), "800");
    EXPECT_EQ(get("tervan", "width", "none"), "none");      /* keys belong to their section */
    EXPECT_EQ(get("tervan", "magUnits", "216  "), "216");   /* trailing blanks of the default go */
    EXPECT_EQ(get("nosection", "x", nullptr), "");
    EXPECT_EQ(get("tervan", "units"), "");                  /* a comment is no key */
    EXPECT_EQ(get("tervan", "phaseUnits", "", 3), "21");    /* size - 1 characters */
    EXPECT_EQ(get("tervan", "phaseUnits", "", 1), "");
}

TEST_F(Profile, WritesKeepEveryOtherLineOfTheFile)
{
    writeFile(path, settings);
    EXPECT_TRUE(WritePrivateProfileStringA("tervan", "PHASEUNITS", "213", path.c_str()));  /* replaced */
    EXPECT_TRUE(WritePrivateProfileStringA("tervan", "magUnits", "215", path.c_str()));    /* appended */
    EXPECT_TRUE(WritePrivateProfileStringA("Plots", "prxReusePlots", "1", path.c_str()));  /* new section */
    EXPECT_TRUE(WritePrivateProfileStringA("Display", "width", nullptr, path.c_str()));    /* key deleted */
    EXPECT_TRUE(WritePrivateProfileStringA("Other", nullptr, nullptr, path.c_str()));      /* section deleted */
    EXPECT_TRUE(WritePrivateProfileStringA("Nothing", "here", nullptr, path.c_str()));     /* nothing to do */
    EXPECT_EQ(readFile(path),
              "; Tervan settings\n"
              "[Display]\n"
              "\n"
              "[tervan]\n"
              "# units\n"
              "PHASEUNITS=213\n"
              "  freqStart =  0.1  \n"
              "title=\"Bode Plot\"\n"
              "magUnits=215\n"
              "\n"
              "[Plots]\n"
              "prxReusePlots=1\n");
    EXPECT_EQ(get("tervan", "phaseunits"), "213");
    EXPECT_EQ(get("plots", "PRXREUSEPLOTS"), "1");
    EXPECT_EQ(platform::settingsWriteFailures(), 0);
    EXPECT_EQ(platform::transcript().size(), 0u);
}

TEST_F(Profile, WriteThatCannotBeDoneLeavesTheFileAndSaysWhy)
{
    std::string missingFolder = folder + "/missing/tervan.ini";
    EXPECT_FALSE(WritePrivateProfileStringA("tervan", "k", "1", missingFolder.c_str()));
    writeFile(path, "[tervan]\nk=0\n");
    EXPECT_FALSE(WritePrivateProfileStringA("tervan", "k", "1", folder.c_str()));   /* a folder */
    EXPECT_FALSE(WritePrivateProfileStringA("tervan", "k", "two\nlines", path.c_str()));
    EXPECT_EQ(readFile(path), "[tervan]\nk=0\n");
    EXPECT_EQ(platform::settingsWriteFailures(), 3);
    EXPECT_EQ(platform::transcript(),
              (std::vector<std::string>{
                  "[error] Cannot write settings file " + missingFolder + ": No such file or directory",
                  "[error] Cannot write settings file " + folder + ": the file cannot be read: Is a directory",
                  "[error] Cannot write settings file " + path + ": a line break in the section, key or value"}));
    platform::resetWindowing();
    EXPECT_EQ(platform::settingsWriteFailures(), 0);
}

TEST_F(Profile, EachLineKeepsItsOwnBreak)
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
        {"[tervan]\n", " A ", "1 ", "[tervan]\nA=\"1 \"\n"},
        {"[tervan]\n", "A", "\t1", "[tervan]\nA=\"\t1\"\n"},
        {"[tervan]\n", "A", "'1'", "[tervan]\nA=\"'1'\"\n"},
    };
    for (const Row &row : rows) {
        fs::remove(path);
        if (row.before)
            writeFile(path, row.before);
        EXPECT_TRUE(WritePrivateProfileStringA("tervan", row.key, row.value, path.c_str()));
        EXPECT_EQ(readFile(path), row.after) << row.after;
        EXPECT_EQ(get("tervan", row.key, "-"), row.value ? row.value : "-") << row.after;
    }
}

TEST_F(Profile, LinkReadOnlyFileAndLeftoverTemporary)
{
    std::string target = dir.file("real.ini");
    writeFile(target, "[tervan]\nk=0\n");
    ASSERT_EQ(symlink("real.ini", path.c_str()), 0);
    /* the leftover of a write killed before its rename, as large as the file it was for */
    writeFile(dir.file(".real.ini.tmp"), std::string(4096, 'x'));

    EXPECT_TRUE(WritePrivateProfileStringA("tervan", "k", "1", path.c_str()));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(readFile(target), "[tervan]\nk=1\n");
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"real.ini", "tervan.ini"})) << "no temporary file is left";

    ASSERT_EQ(chmod(target.c_str(), 0444), 0);
    EXPECT_FALSE(WritePrivateProfileStringA("tervan", "k", "2", path.c_str()));
    EXPECT_EQ(readFile(target), "[tervan]\nk=1\n");
    EXPECT_EQ(platform::transcript(),
              std::vector<std::string>{"[error] Cannot write settings file " + path + ": Permission denied"});
    EXPECT_EQ(platform::settingsWriteFailures(), 1);
}

}
