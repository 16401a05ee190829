#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/recordingdriver/recorder.h"
#include "tests/support/programFixture.h"

/// Runs the routes into a CAV file with the recording driver in place of the real one.
class CavTest : public ProgramTest {
  protected:
    /// Converts from "Csv" or "Rsd". Answers the question for the empty database with Yes and picks `destination`;
    /// answers to further questions have to be in driver.answers before.
    void convertToCav(const std::string& from, const std::string& source, const std::string& destination);

    /// Converts into the file destination().
    void convertToCav(const std::string& from, const std::string& source);

    std::string destination() const { return path("herd.cav"); }

    /// Runs statements on the RSD file of the older layout, which the first call makes, and returns its path.
    std::string rsdSource(const std::string& sql) const;

    /// Returns the driver's calls, one line each: the number of the connection, the call, and its text.
    std::vector<std::string> log() const;

    /// Returns the texts of all boxes but the question for the empty database.
    std::vector<std::string> boxes() const;

    /// Sets the rows of `cavyUser`, by their ids.
    void headingRows(const std::vector<recording::Row>& ids);

    recording::Recorder recorder;
};

/// Returns the log line of a connect to a file, without the number of the connection.
std::string connectTo(const std::string& file);

/// The beginning of each statement for `tree`, up to the quote of the first value.
extern const std::string intoTree;

/// Returns the statement that stores an animal from a CSV file: the values by column, "undefined", "1925-01-01" or
/// nothing for all other columns.
std::string insertOf(const std::map<std::string, std::string>& values);

extern const char* const lostRow;
