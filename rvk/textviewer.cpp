// The modal text viewer: a long text or a text file in a scrolling list
// under a fixed toolbar with a Done button.
#include "rvk/textviewer.h"
#include <cstdarg>
#include <cstdio>
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/listbox.h"
#include "rvk/messagebox.h"
#include "rvk/toolbar.h"

void RVK_ShowText(const char *source, bool sourceIsFile, const char *titleFormat, ...) {
  ListBoxClass list;
  ToolbarClass toolbar;
  char title[512];
  RVK_FORMAT(title, titleFormat);

  int h = RVK_TextHeight();
  list.Create(5, h + 48, SCREEN_W - 10, (SCREEN_H - h - 48) / (h + 1));
  list.Selectable = false;
  if (source == nullptr) source = "";
  if (sourceIsFile) {
    if (!list.LoadFromTextFile(source)) {
      RVK_ReportReadError(source);
      return;
    }
  } else {
    list.AddText(source);
  }

  toolbar.Create(0, 0, true);
  toolbar.AddButton("Done", "yes", KEY_ENTER);
  toolbar.SetTitle("%s", title);
  int answer = -1;
  while (answer != 0 && !RVK_CloseRequested()) {
    RVK_BeginFrame();
    // The colour takes effect from the next clear: the first frame shows the
    // clear colour that stood before, later ones the viewer's backdrop.
    RVK_SetClearColour(RVK_Palette.ViewerBackdrop);
    list.Run();
    answer = toolbar.Run();
    RVK_WaitFrame();
    RVK_EndFrame();
  }
}
