// The modal message box and the read-error report built on it.
#pragma once

void RVK_MessageBox(const char *format, ...) __attribute__((format(printf, 1, 2)));
void RVK_ReportReadError(const char *file);
