#include "tests/unit/virtualpad/support/StderrTrap.h"

#include <cstdio>
#include <unistd.h>

StderrTrap::StderrTrap() : m_previous(::dup(STDERR_FILENO))
{
    std::fflush(stderr);
    if (!m_file.open() || ::dup2(m_file.handle(), STDERR_FILENO) < 0)
        qFatal("stderr cannot be redirected");
}

StderrTrap::~StderrTrap()
{
    std::fflush(stderr);
    ::dup2(m_previous, STDERR_FILENO);
    ::close(m_previous);
}

QByteArray StderrTrap::written()
{
    std::fflush(stderr);
    m_file.seek(0);
    return m_file.readAll();
}
