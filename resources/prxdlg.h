/*
** resources/prxdlg.h (PRXDLG): control identifiers of the dialog templates.
*/
#ifndef PRXDLG
#define PRXDLG

#define IDC_BANNER_BLANK        215
#define IDC_BANNER_VERSION      100

/* TRANSFERINFO_BOX and POLEZERO_BOX: the transfer function and its zeros and poles. */
#define IDC_XFERINFO_HEADING    105
#define IDC_XFERINFO_ROWS       106
#define IDC_XFERINFO_GAIN       109
#define IDC_XFERINFO_HELP       9
#define IDC_POLEZERO_ZEROS      107
#define IDC_POLEZERO_POLES      108
#define IDC_POLEZERO_HEADING    109
#define IDC_POLEZERO_HELP       9

#endif
