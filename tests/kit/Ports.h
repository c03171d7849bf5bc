// TCP ports of this host, and what the kernel says about them.
#pragma once

#include <chrono>

// A port nothing listens on. Test programs that run side by side find different ones.
int FreePort();

// The port refuses connections.
bool Refuses(int port);

// Somebody listens on the port; nothing connects to it.
bool IsListening(int port);

// The program that listens on the port has read all that its clients sent.
bool AllIsRead(int port);

// The system asks the client of this port whether it is still there, when nothing has come from it
// for so long.
bool IsAskedWithin(int port, std::chrono::seconds time);
