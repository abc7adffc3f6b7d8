// captured_lines.h - what a stream is given while this object lives, instead of showing it.
#pragma once
#include <QString>
#include <QStringList>

#include <iostream>
#include <sstream>

class CapturedLines {
public:
    explicit CapturedLines(std::ostream& stream) : _stream(stream), _before(stream.rdbuf(_text.rdbuf())) {}
    ~CapturedLines() { _stream.rdbuf(_before); }
    CapturedLines(const CapturedLines&) = delete;
    CapturedLines& operator=(const CapturedLines&) = delete;

    // The lines since the last call, without their ends.
    [[nodiscard]] QStringList take()
    {
        QStringList lines = QString::fromStdString(_text.str()).split('\n');
        lines.removeLast();    // nothing, or a line that was never ended
        _text.str({});
        return lines;
    }

private:
    std::ostream& _stream;
    std::ostringstream _text;
    std::streambuf* _before;
};
