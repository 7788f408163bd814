// Steps of start-up that main takes in its fixed order: the heap's keeping
// of freed memory, the game's own font for the GUI, and the signals that ask
// the program to close.
#pragma once
#include <allegro.h>

// Keeps the memory that the renderer frees at the end of every frame in the
// heap for the next frame, rather than handing it back to the system.
void KeepFrameMemory();

// Makes the datafile's first object the GUI's standard font in place of the
// library's own, and moves the console for its height. A first object that is
// no font, or one AllegroGL can't convert, leaves the library's font.
void UseGameFont(DATAFILE *datafile);

// SIGTERM and SIGINT (a desktop logging out, Ctrl+C in a terminal) ask the
// program to close the ordinary way; a second one ends it at once.
void InstallCloseSignals();
