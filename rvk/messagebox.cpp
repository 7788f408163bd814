// The modal message box: a frame loop of its own around a small toolbar that
// holds the text and an OK button; and the read-error report built on it.
#include "rvk/messagebox.h"
#include <cstdarg>
#include <cstdio>
#include "rvk/core.h"
#include "rvk/toolbar.h"

void RVK_MessageBox(const char *format, ...) {
  char text[512];
  RVK_FORMAT(text, format);

  ToolbarClass box;
  box.Create(0, 0, false);
  box.SetTitle("! Message");
  box.SetStatus("%s", text);
  box.AddButton("OK", "yes", KEY_ENTER);
  box.Centre();
  int answer = -1;
  while (answer != 0 && !RVK_CloseRequested()) {
    RVK_BeginFrame();
    answer = box.Run();
    RVK_WaitFrame();
    RVK_EndFrame();
  }
  box.Clear();
}

void RVK_ReportReadError(const char *file) {
  RVK_MessageBox("Error reading %s", file != nullptr ? file : "");
}
