#pragma once

#include <string>
#include <vector>

#include "tests/recordingdriver/recorder.h"
#include "tests/support/programFixture.h"

/// A run of a route into a CAV file, with the recording driver in place of the real one.
class CavTest : public ProgramTest {
  protected:
    /// Converts from "Csv" or "Rsd" with the question for the empty database answered Yes, and this file picked for it.
    /// Answers to further questions are to be added to driver.answers before.
    void convertToCav(const std::string& from, const std::string& source, const std::string& destination);

    /// The same into the file destination().
    void convertToCav(const std::string& from, const std::string& source);

    std::string destination() const { return path("herd.cav"); }

    /// All that was asked of the driver, one line each: the number of the connection, what was done, and its text.
    std::vector<std::string> log() const;

    /// The texts of all boxes but the question for the empty database.
    std::vector<std::string> boxes() const;

    /// Answers to the question whether the row of headings is there.
    void headingRows(const std::vector<recording::Row>& ids);

    recording::Recorder recorder;
};

/// How a connect to a file is noted, without the number in front.
std::string connectTo(const std::string& file);

/// How each statement for `tree` begins.
extern const std::string intoTree;

extern const char* const lostRow;
