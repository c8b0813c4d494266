/*
** resources/prxdlg.h (PRXDLG): control identifiers of the dialog templates.
*/
#ifndef PRXDLG
#define PRXDLG

#define IDC_BANNER_BLANK        215
#define IDC_BANNER_VERSION      100

/* Every Help button. */
#define IDC_HELP                9

/* LINEARIZE; 207 and 208 are also the remembered output choices. */
#define IDC_LIN_FILE_LABEL      147
#define IDC_LIN_RESULT_FILE     101
#define IDC_LIN_SELECT_POINTS   234
#define IDC_LIN_CHOICE_FIRST    206
#define IDC_LIN_TO_FILE         207
#define IDC_LIN_TO_SCREEN       208

#endif
