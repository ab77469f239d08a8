// Stands in for a tool in the tests of the runners. It does the steps that the environment
// variable TRESK_STANDIN lists, one a line, each a name and what belongs to it.

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

const unsigned longestLife = 20; // seconds
const int millisecond = 1000; // microseconds

void check(bool good, const char* what)
{
    if (good)
        return;
    std::perror(what);
    std::_Exit(99);
}

void writeTo(int descriptor, const std::string& bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = write(descriptor, bytes.data() + done, bytes.size() - done);
        check(n > 0, "write");
        done += static_cast<std::size_t>(n);
    }
}

std::string readSome()
{
    std::string bytes(65536, '\0');
    const ssize_t n = read(STDIN_FILENO, &bytes[0], bytes.size());
    check(n >= 0, "read");
    bytes.resize(static_cast<std::size_t>(n));
    return bytes;
}

std::string hexOf(const std::string& bytes)
{
    const char* const digits = "0123456789abcdef";
    std::string hex;
    for (const char c : bytes) {
        const auto value = static_cast<unsigned char>(c);
        hex += digits[value / 16];
        hex += digits[value % 16];
    }
    return hex;
}

std::string bytesOf(const std::string& hex)
{
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

/// Prints all of standard input as one line of hexadecimal digits.
void printInput(const std::string&)
{
    std::string all;
    for (std::string bytes = readSome(); !bytes.empty(); bytes = readSome())
        all += bytes;
    writeTo(STDOUT_FILENO, "input " + hexOf(all) + '\n');
}

void copyInput(const std::string&)
{
    for (std::string bytes = readSome(); !bytes.empty(); bytes = readSome())
        writeTo(STDOUT_FILENO, bytes);
}

/// Waits until the runner has read what was printed: what comes next is another piece to it.
void awaitReader(const std::string&)
{
    int waiting = 0;
    for (;;) {
        check(ioctl(STDOUT_FILENO, FIONREAD, &waiting) == 0, "FIONREAD");
        if (waiting == 0)
            break;
        usleep(millisecond / 20);
    }
}

void awaitFile(const std::string& path)
{
    while (access(path.c_str(), F_OK) != 0)
        usleep(millisecond);
}

void makeFile(const std::string& path)
{
    check(close(open(path.c_str(), O_WRONLY | O_CREAT, S_IRUSR | S_IWUSR)) == 0, "open");
}

/// Prints COUNT lines of LENGTH characters, the first 8 of which are the line's number.
void printLines(const std::string& countAndLength)
{
    std::istringstream stream(countAndLength);
    int count = 0;
    std::size_t length = 0;
    stream >> count >> length;
    std::string block;
    const std::string padding(length, '.');
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(100000000 + i).substr(1);
        block += (number + padding).substr(0, length) + '\n';
        if (block.size() < 65536 && i + 1 < count)
            continue;
        writeTo(STDOUT_FILENO, block);
        block.clear();
    }
}

/// Prints that many characters without a line break.
void printCharacters(const std::string& count)
{
    const std::string block(10000, 'x');
    for (std::size_t left = std::stoul(count); left > 0; left -= std::min(left, block.size()))
        writeTo(STDOUT_FILENO, block.substr(0, left));
}

/// Prints what this program was started with for SIGPIPE.
void printBrokenPipe(const std::string&)
{
    struct sigaction action = {};
    sigaction(SIGPIPE, nullptr, &action);
    sigset_t mask;
    sigprocmask(SIG_BLOCK, nullptr, &mask);
    std::string text = "SIGPIPE";
    text += action.sa_handler == SIG_DFL ? " default" : " not default";
    text += sigismember(&mask, SIGPIPE) == 1 ? " blocked\n" : " not blocked\n";
    writeTo(STDOUT_FILENO, text);
}

void die(const std::string& number)
{
    const rlimit none = {};
    setrlimit(RLIMIT_CORE, &none);
    std::signal(std::stoi(number), SIG_DFL);
    std::raise(std::stoi(number));
}

/// Leaves a process behind that keeps the standard streams open, and the file at @p path locked,
/// until that is removed. Returns only in this one.
bool leaveProcess(const std::string& path)
{
    const int file = open(path.c_str(), O_RDWR | O_CREAT, S_IRUSR | S_IWUSR);
    check(flock(file, LOCK_EX) == 0, "flock");
    return fork() != 0;
}

void stayUntilRemoved(const std::string& path)
{
    while (access(path.c_str(), F_OK) == 0)
        usleep(millisecond);
    std::_Exit(0);
}

void leaveSilent(const std::string& path)
{
    if (leaveProcess(path))
        return;
    alarm(longestLife / 4);
    stayUntilRemoved(path);
}

/// The one left behind prints as fast as it is read.
void leaveTalking(const std::string& path)
{
    if (leaveProcess(path))
        return;
    alarm(longestLife / 4);
    std::signal(SIGPIPE, SIG_IGN);
    std::string text; // in long lines, so that the reader keeps up where it is slow
    while (text.size() < 1000000)
        text += std::string(999, 'x') + '\n';
    while (write(STDOUT_FILENO, text.data(), text.size()) > 0) { }
    stayUntilRemoved(path);
}

using Step = std::function<void(const std::string&)>;

std::map<std::string, Step> steps(const std::string& arguments)
{
    return {
        {"arguments", [=](const std::string&) { writeTo(STDOUT_FILENO, arguments); }},
        {"awaitfile", awaitFile},
        {"characters", printCharacters},
        {"close", [](const std::string& number) { close(std::stoi(number)); }},
        {"copy", copyInput},
        {"die", die},
        {"err", [](const std::string& hex) { writeTo(STDERR_FILENO, bytesOf(hex)); }},
        {"exit", [](const std::string& code) { std::_Exit(std::stoi(code)); }},
        {"ignore", [](const std::string& number) { std::signal(std::stoi(number), SIG_IGN); }},
        {"input", printInput},
        {"leavesilent", leaveSilent},
        {"leavetalking", leaveTalking},
        {"lines", printLines},
        {"makefile", makeFile},
        {"out", [](const std::string& hex) { writeTo(STDOUT_FILENO, bytesOf(hex)); }},
        {"raise", [](const std::string& number) { std::raise(std::stoi(number)); }},
        {"sigpipe", printBrokenPipe},
        {"sleep", [](const std::string& ms) { usleep(unsigned(std::stoi(ms)) * millisecond); }},
        {"taken", awaitReader},
    };
}

} // namespace

int main(int argc, char** argv)
{
    alarm(longestLife);
    std::string arguments;
    for (int i = 1; i < argc; ++i)
        arguments += "argument " + hexOf(argv[i]) + '\n';
    const std::map<std::string, Step> known = steps(arguments);
    const char* const list = std::getenv("TRESK_STANDIN");
    std::istringstream stream(list ? list : "");
    std::string line;
    while (std::getline(stream, line)) {
        const std::size_t end = line.find(' ');
        const auto step = known.find(line.substr(0, end));
        check(step != known.end(), line.c_str());
        step->second(end == std::string::npos ? std::string() : line.substr(end + 1));
    }
    return 0;
}
