// The modal text viewer: a long text or a text file in a scrolling list.
#pragma once

void RVK_ShowText(const char *source, bool sourceIsFile, const char *titleFormat, ...) __attribute__((format(printf, 3, 4)));
