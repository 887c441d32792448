// The work that every server of the comparison does, so that all of them hand out the same texts.
#pragma once

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

/// A picture in base64 of a wanted size; each turn's text differs from the one before. Its memory is apart from the
/// heap, so that it does not show in what is measured.
class PictureText
{
public:
    explicit PictureText(int size)
        : m_size(static_cast<std::size_t>(std::max(size, 8))),
          m_text(static_cast<char *>(
              mmap(nullptr, m_size + 1, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
        static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::uint32_t state = 1;
        for (std::size_t i = 0; i < std::min(m_size, period); ++i) {
            state = state * 1664525u + 1013904223u;
            m_text[i] = alphabet[state >> 26];
        }
        for (std::size_t i = period; i < m_size; i += period)
            std::copy_n(m_text, std::min(period, m_size - i), m_text + i);
    }
    ~PictureText() { munmap(m_text, m_size + 1); }
    PictureText(const PictureText &) = delete;
    PictureText &operator=(const PictureText &) = delete;

    /// NUL-terminated; valid until the next turn.
    char *Next()
    {
        char turn[16];
        std::snprintf(turn, sizeof turn, "%08u", m_turn++);
        std::copy_n(turn, 8, m_text);
        return m_text;
    }

private:
    static constexpr std::size_t period = 4096;

    std::size_t m_size;
    char *m_text;
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
