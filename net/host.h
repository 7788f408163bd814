// Hosting and joining: the two dialogs of the multiplayer menu, the network
// layer's start and end, the server's host and the client's connection.
#pragma once

bool HostGameDialog();
bool ConnectGameDialog();

bool NET_InitNetwork();
void NET_ShutdownNetwork();
bool NET_StartServer();
bool NET_ConnectToServer();
