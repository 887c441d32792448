// The work that every server of the comparison does, so that all of them hand out the same texts.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

/// A picture in base64 of a wanted size; each turn's text differs from the one before.
class PictureText
{
public:
    explicit PictureText(int size)
    {
        static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        m_text.resize(static_cast<std::size_t>(size));
        std::uint32_t state = 1;
        for (char &c : m_text) {
            state = state * 1664525u + 1013904223u;
            c = alphabet[state >> 26];
        }
    }

    std::string &Next()
    {
        char turn[16];
        std::snprintf(turn, sizeof turn, "%08u", m_turn++);
        m_text.replace(0, 8, turn, 8);
        return m_text;
    }

private:
    std::string m_text;
    unsigned m_turn = 0;
};

struct WorkPoint {
    int x, y, pressure, strokeEnd;
    std::int64_t timeMs;
};

inline WorkPoint PointAt(int i)
{
    return {i % 20000, i % 15000, i % 2048, i % 50 == 49 ? 1 : 0, 1700000000000 + std::int64_t{i} * 5};
}
