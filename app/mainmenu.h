// The front end: the main menu and the multiplayer menu.
#pragma once

void MainMenu();
