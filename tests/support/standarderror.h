// What this process says on standard error, kept from the terminal.
#pragma once

#include "tests/support/testfiles.h"

#include <fcntl.h>
#include <unistd.h>

class StandardError {
public:
    StandardError()
        : m_kept(::dup(STDERR_FILENO)), m_file(::open(kPath, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600))
    {
        ::dup2(m_file, STDERR_FILENO);
    }
    ~StandardError()
    {
        ::dup2(m_kept, STDERR_FILENO);
        ::close(m_kept);
        ::close(m_file);
    }
    StandardError(const StandardError &) = delete;
    StandardError &operator=(const StandardError &) = delete;

    // What is said while `action` runs.
    static QByteArray during(const auto &action)
    {
        const StandardError error;
        action();
        return text();
    }
    static QByteArray text() { return content(QString::fromLatin1(kPath)); }

private:
    static constexpr char kPath[] = "/tmp/stderr";
    const int m_kept;
    const int m_file;
};
