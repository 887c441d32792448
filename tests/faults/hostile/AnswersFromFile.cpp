/// Answers as the file "hostile-answers" in the working directory has them at the time of the call, one a line:
///   text null | repeat COUNT BYTE      what text calls hand out; the byte as a number
///   number N                           what all but InitialDevice return, except the counts of points
///   opened BYTE                        what InitialDevice returns
///   points N                           the counts of points
///   fill BYTE                          what buffers are filled with, up to their size and without a NUL
///   block FUNCTION                     the function of this name, without the model's, blocks: until somebody writes
///                                      to the pipe "FUNCTION-blocks", which it makes

#include "tests/faults/hostile/Answers.h"

#include <cstring>
#include <fstream>
#include <set>
#include <string>

#include <sys/stat.h>

namespace {

struct Script {
    bool isNull = false;
    std::string text = "text";
    int number = 0;
    int opened = 1;
    int points = 0;
    int fill = -1;
    std::set<std::string> blocking;
};

Script script;

Script readScript()
{
    Script read;
    std::ifstream file("hostile-answers");
    std::string word;
    while (file >> word) {
        if (word == "number")
            file >> read.number;
        else if (word == "opened")
            file >> read.opened;
        else if (word == "points")
            file >> read.points;
        else if (word == "fill")
            file >> read.fill;
        else if (word == "block" && file >> word)
            read.blocking.insert(word);
        else if (word == "text" && file >> word) {
            read.isNull = word == "null";
            std::size_t count = 0;
            int byte = 0;
            if (!read.isNull && file >> count >> byte)
                read.text.assign(count, static_cast<char>(byte));
        }
    }
    return read;
}

bool is(const char *function, const char *name)
{
    return std::strcmp(std::strchr(function, '_') + 1, name) == 0;
}

void block(const std::string &pipe)
{
    ::mkfifo(pipe.c_str(), 0600);
    std::ifstream(pipe).get();
}

/// Called once for each point: no time to read a file.
bool isPointCall(const char *function)
{
    return std::strstr(function, "InkPointData") != nullptr;
}

} // namespace

void hostile::enter(const char *function)
{
    if (isPointCall(function))
        return;
    script = readScript();
    for (const std::string &name : script.blocking) {
        if (is(function, name.c_str()))
            block(name + "-blocks");
    }
}

int hostile::number(const char *function)
{
    if (is(function, "InitialDevice"))
        return script.opened;
    return std::strstr(function, "PointsNumber") ? script.points : script.number;
}

bool hostile::text(const char *function, std::string &content)
{
    // A long text for each of many points would be too much for any machine.
    content = isPointCall(function) && script.text.size() > 1000 ? "0" : script.text;
    return !script.isNull;
}

void hostile::fill(const char *function, void *buffer, std::size_t size)
{
    if (script.fill >= 0 && !isPointCall(function))
        std::memset(buffer, script.fill, size);
}
