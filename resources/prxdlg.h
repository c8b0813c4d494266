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

/* Settings dialogs: PRX_OPTIONS, ROOT_LOC_OPTIONS, PRX_PREFERENCES. */
#define IDC_OPTION_START        102
#define IDC_OPTION_STOP         103
#define IDC_OPTION_STEPS        104
#define IDC_OPTION_START_LABEL  1026
#define IDC_OPTION_STOP_LABEL   1027
#define IDC_OPTION_GAIN_GROUP   1028
#define IDC_OPTION_AUTO_RANGE   1029
#define IDC_PREF_NUMERATOR      200
#define IDC_PREF_DENOMINATOR    201
#define IDC_PREF_PRECISION      203
#define IDC_PREF_HERTZ          210
#define IDC_PREF_RADIANS_SEC    211
#define IDC_PREF_DEGREES        212
#define IDC_PREF_RADIANS        213
#define IDC_PREF_DECIBELS       215
#define IDC_PREF_LOG10          216
#define IDC_PREF_FREQ_GROUP     701
#define IDC_PREF_PHASE_GROUP    704
#define IDC_PREF_MAG_GROUP      707
#define IDC_PREF_NEGATIVE_FREQ  1035

/* TRANSFERINFO_BOX and POLEZERO_BOX: the transfer function and its zeros and poles. */
#define IDC_XFERINFO_HEADING    105
#define IDC_XFERINFO_ROWS       106
#define IDC_XFERINFO_GAIN       109
#define IDC_XFERINFO_HELP       9
#define IDC_POLEZERO_ZEROS      107
#define IDC_POLEZERO_POLES      108
#define IDC_POLEZERO_HEADING    109
#define IDC_POLEZERO_HELP       9

/* PRX_MARGINS: the gain and phase margins of a Bode run (edits created disabled). */
#define IDC_MARGIN_PHASE_CROSSOVER  1032
#define IDC_MARGIN_GAIN             1033
#define IDC_MARGIN_GAIN_CROSSOVER   1034
#define IDC_MARGIN_PHASE            105

/* NYQUISTINFINITI: R∞ of the Nyquist detours. */
#define IDC_NYQUIST_INFINITY    901

/* COMPENSATORDESIGN: the series compensator and the plant's roots. */
#define IDC_COMP_ZERO_EDIT      1021
#define IDC_COMP_ZEROS          107
#define IDC_COMP_POLE_EDIT      1020
#define IDC_COMP_POLES          108
#define IDC_COMP_ADD            303
#define IDC_COMP_DEL            304
#define IDC_COMP_CHANGE         301
#define IDC_COMP_REPLOT         302
#define IDC_COMP_PLANT          1022
#define IDC_COMP_HEADING        109
#define IDC_COMP_PLANT_HEADING  111
#define IDC_COMP_GAIN           1023
#define IDC_COMP_HELP           9

#endif
