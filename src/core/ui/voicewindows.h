#pragma once
// The database session's voice in the program's windows: failures as message boxes (through
// the one message-box seam, so tests see them), waits in the progress window.

// Installs it for the rest of the program's life; called at start and by the tests' fixtures.
void InstallWindowVoice();
// Shows the not-connected notice when the database is not connected; true then. Every
// database command asks first.
bool ReportNotConnected();
