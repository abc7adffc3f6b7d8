// story.h - what the monkey was doing, for when the program dies in it.
#pragma once
#include <QString>

#include <cstdio>
#include <cstring>
#include <unistd.h>

inline char story[1000];    // of the action going on, for when the program dies in it

inline void tell_story(int = 0) { (void)!write(STDERR_FILENO, story, std::strlen(story)); }

inline void note(const QString& what)
{
    const std::size_t length = std::strlen(story);
    std::snprintf(story + length, sizeof story - length, "%s, ", qPrintable(what));
}
