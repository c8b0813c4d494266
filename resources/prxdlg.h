/*
** resources/prxdlg.h (PRXDLG): control identifiers of the dialog templates.
*/
#ifndef PRXDLG
#define PRXDLG

#define IDC_BANNER_BLANK        215
#define IDC_BANNER_VERSION      100

#endif
