#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#define RECORDING_API __attribute__((visibility("default")))

/// The memory of the recording SDK. It lives in a library of its own that the test and the recording SDK both link,
/// because the product unloads the SDK whenever it drops a pad object, and what was recorded has to outlive that.
namespace recording {

using TextCallback = void (*)(char *);

/// One ink point as the library exchanges it: the caller sets nIndex, the library fills the rest.
struct InkPoint {
    int32_t nIndex;
    int16_t x;
    int16_t y;
    int16_t pressure;
    uint8_t bStrokeEnd;
};

/// What the library answers to one expected call.
struct Answer {
    long long value = 0;             ///< numbers and flags
    std::optional<std::string> text; ///< char* results: the text handed out, nothing for a null pointer
    std::string output;              ///< bytes copied to the output pointer exactly as they are
    std::function<void()> effect;    ///< runs inside the call: what else the library does
    bool keepsText = false;          ///< the caller is known not to give this text back
};

RECORDING_API Answer number(long long value);
RECORDING_API Answer text(std::string content);
/// An output of `bytes` plus a terminating NUL, with the result code `value`.
RECORDING_API Answer outputText(const std::string &bytes, long long value = 0);
RECORDING_API Answer output(std::string bytes, long long value = 0);
RECORDING_API Answer outputInts(std::vector<int32_t> values, long long value = 0);
/// A filled point record; its nIndex and its padding are overwritten with rubbish, as a library may do.
RECORDING_API Answer point(int x, int y, int pressure, int strokeEnd);

/// One call as it reached the library.
struct Call {
    std::string function;
    std::string arguments;  ///< spelled out, separated by ", "
    long index = 0;         ///< the last number among the arguments
    void *output = nullptr; ///< where the answer's output goes
    bool givesBack = false; ///< the call has a text to release: `givenBack`, which may be null
    char *givenBack = nullptr;
};

struct Reply {
    long long value = 0;
    char *text = nullptr;
};

/// Compares the calls that reach the library with those that the test expects, one by one and in order. A call is
/// spelled as text: "MVAlder_SetPenWidth(2, 7)". Texts are numbered in the order they were handed out ("#1"),
/// output pointers read "buf", point records "point 3", paths and data are quoted with everything outside printable
/// ASCII as "\u{1F58A}" per code point or "\xFF" per byte. Not for use from several threads at once.
class RECORDING_API Recorder
{
public:
    static Recorder &instance();

    // For the test.

    void expect(std::string call, Answer answer = {});
    /// Answers every call of a function out of `answers`, given Call::index; such calls are counted, not compared.
    void answerAll(const std::string &function, std::function<Answer(long index)> answers);
    long callsAnswered(const std::string &function) const;
    /// Makes "load" and "unload" of the library calls to be expected, up to the next finish().
    void traceLoading();
    bool isLoaded() const { return m_loaded; }
    TextCallback registeredCallback() const { return m_callback; }
    /// Everything that went wrong since the last finish(): calls nobody expected, expected calls that never came,
    /// texts not given back, a library that is still loaded. Starts afresh.
    std::vector<std::string> finish();

    // For the library.

    Reply call(const Call &call);
    void loaded();
    void unloaded();
    void registerCallback(TextCallback callback) { m_callback = callback; }
    std::string nameOfText(const char *text) const;

private:
    struct Expected {
        std::string call;
        Answer answer;
    };
    struct Bulk {
        std::function<Answer(long)> answers;
        long calls = 0;
    };
    struct HandedOut {
        std::string producer;
        long serial;
        bool keeps;
    };

    Recorder() = default;
    Answer answerTo(const Call &call);
    Answer answerToLine(const std::string &line);
    char *handOut(const std::string &producer, const Answer &answer);
    void takeBack(const std::string &function, char *text);
    void problem(std::string what) { m_problems.push_back(std::move(what)); }

    std::deque<Expected> m_expected;
    std::map<std::string, Bulk> m_bulk;
    std::unordered_map<const char *, HandedOut> m_texts;
    std::vector<std::string> m_problems;
    TextCallback m_callback = nullptr;
    long m_textsHandedOut = 0;
    bool m_loaded = false;
    bool m_traceLoading = false;
};

} // namespace recording
