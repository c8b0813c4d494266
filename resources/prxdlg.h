/*
** resources/prxdlg.h (PRXDLG): control identifiers of the dialog templates.
*/
#ifndef PRXDLG
#define PRXDLG

#define IDC_BANNER_BLANK        215
#define IDC_BANNER_VERSION      100

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

#endif
