#include "tests/sdk/recording/Recorder.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace recording {

namespace {

static_assert(offsetof(InkPoint, nIndex) == 0 && offsetof(InkPoint, x) == 4 && offsetof(InkPoint, y) == 6
                  && offsetof(InkPoint, pressure) == 8 && offsetof(InkPoint, bStrokeEnd) == 10
                  && sizeof(InkPoint) == 12,
              "the point record is exchanged with a foreign library");

struct Pair {
    const char *producer;
    const char *release;
};

const Pair pairs[] = {
    {"_GetInkPointDataTimeInfo", "_FreeInkPointDataTimeInfo"},
    {"_Base64Encode", "_Base64EncodeFree"},
    {"_Base64EncodeEx", "_Base64EncodeExFree"},
    {"_WPSBase64Encode", "_WPSBase64EncodeFree"},
    {"_GetSVGImageBase64Data", "_FreeSVGImageBase64Data"},
    {"_GetFPImageBase64Data", "_FreeFPImageBase64Data"},
};

/// "MVAlder_Base64Encode" -> "MVAlder_Base64EncodeFree"; the family has to be the same.
std::string releaseOf(const std::string &producer)
{
    const size_t underscore = producer.find('_');
    for (const Pair &pair : pairs) {
        if (producer.compare(underscore, std::string::npos, pair.producer) == 0) {
            return producer.substr(0, underscore) + pair.release;
        }
    }
    return "no function";
}

} // namespace

Answer number(long long value)
{
    Answer answer;
    answer.value = value;
    return answer;
}

Answer text(std::string content)
{
    Answer answer;
    answer.text = std::move(content);
    return answer;
}

Answer output(std::string bytes, long long value)
{
    Answer answer;
    answer.output = std::move(bytes);
    answer.value = value;
    return answer;
}

Answer outputText(const std::string &bytes, long long value)
{
    return output(bytes + '\0', value);
}

Answer outputInts(std::vector<int32_t> values, long long value)
{
    std::string bytes(values.size() * sizeof(int32_t), '\0');
    memcpy(bytes.data(), values.data(), bytes.size());
    return output(std::move(bytes), value);
}

Answer point(int x, int y, int pressure, int strokeEnd)
{
    InkPoint record;
    memset(&record, 0xA5, sizeof record);
    record.x = static_cast<int16_t>(x);
    record.y = static_cast<int16_t>(y);
    record.pressure = static_cast<int16_t>(pressure);
    record.bStrokeEnd = static_cast<uint8_t>(strokeEnd);
    std::string bytes(sizeof record, '\0');
    memcpy(bytes.data(), &record, sizeof record);
    return output(std::move(bytes));
}

Recorder &Recorder::instance()
{
    // Never destroyed: a library that is still loaded at the end of the process reports to it even then.
    static Recorder *recorder = new Recorder;
    return *recorder;
}

void Recorder::expect(std::string call, Answer answer)
{
    m_expected.push_back({std::move(call), std::move(answer)});
}

void Recorder::answerAll(const std::string &function, std::function<Answer(long)> answers)
{
    m_bulk[function] = {std::move(answers), 0};
}

long Recorder::callsAnswered(const std::string &function) const
{
    const auto found = m_bulk.find(function);
    return found == m_bulk.end() ? 0 : found->second.calls;
}

void Recorder::traceLoading()
{
    m_traceLoading = true;
}

std::vector<std::string> Recorder::finish()
{
    for (const Expected &expected : m_expected) {
        problem("never called: " + expected.call);
    }
    for (const auto &[address, text] : m_texts) {
        if (!text.keeps) {
            problem("never given back: text " + nameOfText(address) + " of " + text.producer);
        }
        free(const_cast<char *>(address));
    }
    if (m_loaded) {
        problem("the library is still loaded");
    }
    const std::vector<std::string> problems = std::move(m_problems);
    m_expected.clear();
    m_bulk.clear();
    m_texts.clear();
    m_problems.clear();
    m_callback = nullptr;
    m_textsHandedOut = 0;
    m_traceLoading = false;
    return problems;
}

void Recorder::loaded()
{
    m_loaded = true;
    if (m_traceLoading) {
        answerToLine("load");
    }
}

void Recorder::unloaded()
{
    m_loaded = false;
    if (m_traceLoading) {
        answerToLine("unload");
    }
}

std::string Recorder::nameOfText(const char *text) const
{
    if (!text) {
        return "null";
    }
    const auto found = m_texts.find(text);
    return found == m_texts.end() ? "unknown text" : "#" + std::to_string(found->second.serial);
}

Reply Recorder::call(const Call &call)
{
    const Answer answer = answerTo(call);
    if (call.givesBack) {
        takeBack(call.function, call.givenBack);
    }
    if (!answer.output.empty()) {
        if (call.output) {
            memcpy(call.output, answer.output.data(), answer.output.size());
        } else {
            problem("no room for the output of " + call.function);
        }
    }
    if (answer.effect) {
        answer.effect();
    }
    return {answer.value, answer.text ? handOut(call.function, answer) : nullptr};
}

Answer Recorder::answerTo(const Call &call)
{
    const auto bulk = m_bulk.find(call.function);
    if (bulk != m_bulk.end()) {
        ++bulk->second.calls;
        return bulk->second.answers(call.index);
    }
    return answerToLine(call.function + '(' + call.arguments + ')');
}

Answer Recorder::answerToLine(const std::string &line)
{
    if (m_expected.empty()) {
        problem("unexpected: " + line);
        return {};
    }
    if (m_expected.front().call != line) {
        // The expectation stays: it is reported as well unless its call still comes.
        problem("unexpected: " + line + " instead of " + m_expected.front().call);
        return {};
    }
    Answer answer = std::move(m_expected.front().answer);
    m_expected.pop_front();
    return answer;
}

char *Recorder::handOut(const std::string &producer, const Answer &answer)
{
    // Exactly as long as it must be, so that a memory checker sees every byte read past the end.
    char *copy = static_cast<char *>(malloc(answer.text->size() + 1));
    memcpy(copy, answer.text->c_str(), answer.text->size() + 1);
    m_texts[copy] = {producer, ++m_textsHandedOut, answer.keepsText};
    return copy;
}

void Recorder::takeBack(const std::string &function, char *text)
{
    if (!text) {
        return;
    }
    const auto found = m_texts.find(text);
    if (found == m_texts.end()) {
        problem(function + " was given a text that is not out");
        return;
    }
    if (releaseOf(found->second.producer) != function) {
        problem(function + " was given a text of " + found->second.producer);
    }
    if (found->second.keeps) {
        problem(function + " was given a text that the caller was to keep");
    }
    m_texts.erase(found);
    memset(text, '!', strlen(text));
    free(text);
}

} // namespace recording
