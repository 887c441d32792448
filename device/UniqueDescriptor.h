#pragma once

#include <unistd.h>

/// Owns one file descriptor; -1 is none.
class UniqueDescriptor
{
public:
    explicit UniqueDescriptor(int nDescriptor = -1) : m_nDescriptor(nDescriptor) {}
    ~UniqueDescriptor() { Reset(); }
    UniqueDescriptor(const UniqueDescriptor &) = delete;
    UniqueDescriptor &operator=(const UniqueDescriptor &) = delete;

    int Get() const { return m_nDescriptor; }
    bool IsOpen() const { return m_nDescriptor >= 0; }
    void Reset(int nDescriptor = -1)
    {
        if (IsOpen())
            ::close(m_nDescriptor);
        m_nDescriptor = nDescriptor;
    }

private:
    int m_nDescriptor;
};
