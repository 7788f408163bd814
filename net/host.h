// Hosting and joining: the two dialogs of the multiplayer menu, the network
// layer's start and end, the server's host and the client's connection.
#pragma once
#include <cstdint>
#include <string>

bool HostGameDialog();
bool ConnectGameDialog();

bool NET_InitNetwork();
void NET_ShutdownNetwork();
bool NET_StartServer();
bool NET_ConnectToServer();

// A port as the settings and the dialogs hold it: digits only, 1 to 65535.
bool NET_ParsePort(const std::string &text, uint16_t &port);
