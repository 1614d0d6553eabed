// What goes wrong in the host, with the exit status that tells a script which kind it was.
#pragma once

#include <stdexcept>
#include <string>

namespace vixahost {

inline constexpr int statusDone = 0;
inline constexpr int statusFailedJob = 1;
inline constexpr int statusWrongWords = 2;
inline constexpr int statusNoDecoder = 3;

// The message is one line of UTF-8 that says what is wrong and what to do.
class HostError : public std::runtime_error
{
public:
    HostError(int exitStatus, const std::string& message) : std::runtime_error(message), status(exitStatus) {}
    int Status() const noexcept { return status; }

private:
    int status;
};

// The words on the command line can't be meant so.
class WrongWords : public HostError
{
public:
    explicit WrongWords(const std::string& message) : HostError(statusWrongWords, message) {}
};

// The words are right, the job can't be done.
class FailedJob : public HostError
{
public:
    explicit FailedJob(const std::string& message, int exitStatus = statusFailedJob) : HostError(exitStatus, message) {}
};

// The system can't decode the clip; it could with other codecs.
class NoDecoder : public FailedJob
{
public:
    explicit NoDecoder(const std::string& message) : FailedJob(message, statusNoDecoder) {}
};

// The user ended the job.
class StoppedJob : public FailedJob
{
public:
    StoppedJob() : FailedJob("Stopped before the end; nothing was written.") {}
};

} // namespace vixahost
