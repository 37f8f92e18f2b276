#pragma once
// The about box, the contact window, the user manual and the web page.

class QWidget;

void ShowAbout();
void ShowContact();
// Opens "vesk_um.rtf" from the program directory with the desktop's program for it.
void OpenUserManual();
// Opens the product's web page: the README shipped beside the program.
void OpenWebPage();
