// pages.h - everything that goes beyond the bare window: further pages, and the message line.
#pragma once

class ORVBrowser;

// Adds all of it to a window, which owns it from then on. Once for each window.
void add_pages(ORVBrowser& window);
