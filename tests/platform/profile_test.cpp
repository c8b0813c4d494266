/*
** tests/platform/profile_test.cpp: settings files read and written through the private-profile
** calls: values, defaults, truncation, lists, and writes that keep the rest of the file.
*/
#include <gtest/gtest.h>

#include "platform/driver.h"
#include "support.h"

namespace {

class Profile : public ::testing::Test {
protected:
    void SetUp() override { platform::resetWindowing(); }

    void write(const std::string &text) { testing_support::writeFile(path, text); }
    std::string contents() const { return testing_support::readFile(path); }

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
    write(settings);
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

TEST_F(Profile, MissingOrUnreadableFileReadsAsEmpty)
{
    EXPECT_EQ(get("tervan", "freqStart", "0.1"), "0.1");
    std::string saved = path;
    path = folder;                          /* a folder cannot be read as a file */
    EXPECT_EQ(get("tervan", "freqStart", "7"), "7");
    path = folder + "/no/such/dir/x.ini";
    EXPECT_EQ(get("tervan", "freqStart", "8"), "8");
    path = saved;
    EXPECT_EQ(GetPrivateProfileStringA("tervan", "x", "d", nullptr, 10, path.c_str()), 0u);
}

TEST_F(Profile, WritesKeepEveryOtherLineOfTheFile)
{
    write(settings);
    EXPECT_TRUE(WritePrivateProfileStringA("tervan", "PHASEUNITS", "213", path.c_str()));  /* replaced */
    EXPECT_TRUE(WritePrivateProfileStringA("tervan", "magUnits", "215", path.c_str()));    /* appended */
    EXPECT_TRUE(WritePrivateProfileStringA("Plots", "prxReusePlots", "1", path.c_str()));  /* new section */
    EXPECT_TRUE(WritePrivateProfileStringA("Display", "width", nullptr, path.c_str()));    /* key deleted */
    EXPECT_TRUE(WritePrivateProfileStringA("Other", nullptr, nullptr, path.c_str()));      /* section deleted */
    EXPECT_TRUE(WritePrivateProfileStringA("Nothing", "here", nullptr, path.c_str()));     /* nothing to do */
    EXPECT_EQ(contents(),
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
    write("[tervan]\nk=0\n");
    std::string underFile = path + "/tervan.ini";   /* its folder is a file */
    EXPECT_FALSE(WritePrivateProfileStringA("tervan", "k", "1", underFile.c_str()));
    EXPECT_FALSE(WritePrivateProfileStringA("tervan", "k", "1", folder.c_str()));   /* a folder */
    EXPECT_FALSE(WritePrivateProfileStringA("tervan", "k", "two\nlines", path.c_str()));
    EXPECT_EQ(contents(), "[tervan]\nk=0\n");
    EXPECT_EQ(platform::settingsWriteFailures(), 4);
    EXPECT_EQ(platform::transcript(),
              (std::vector<std::string>{
                  "[error] Cannot write settings file " + missingFolder + ": No such file or directory",
                  "[error] Cannot write settings file " + underFile + ": Not a directory",
                  "[error] Cannot write settings file " + folder + ": the file cannot be read: Is a directory",
                  "[error] Cannot write settings file " + path + ": a line break in the section, key or value"}));
    platform::resetWindowing();
    EXPECT_EQ(platform::settingsWriteFailures(), 0);
}

}
