/*
** tests/compensator/compensator_fixture.h: a fresh host with the plug-in and a plant
** in stateSpaceModel, the compensator design run as the Compensator Design command runs
** it, and what the dialog showed read back from the transcript.
*/
#ifndef PRAXA_TESTS_COMPENSATOR_FIXTURE_H
#define PRAXA_TESTS_COMPENSATOR_FIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "compensator/compensator.h"
#include "host/host.h"
#include "hostapp/host_state.h"
#include "linearize/linearize.h"
#include "platform/driver.h"
#include "resources/prxdlg.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "support.h"
#include "support/plugin_plot.h"
#include "tests/xfer/model.h"
#include "xfer/xfer.h"

namespace comptest {

using testing_support::tracePoints;

using platform::ActionKind;
using platform::DialogAction;

inline const char *const DIALOG = "COMPENSATORDESIGN";

inline void type(int control, const std::string &text)
{
    platform::queueDialogAction(DialogAction{DIALOG, ActionKind::Type, control, text, 0});
}
inline void click(int control) { platform::queueDialogAction(DialogAction{DIALOG, ActionKind::Click, control, "", 0}); }

/* Each root typed into `edit` and added to its list. */
inline void queueRoots(int edit, const std::vector<std::string> &roots)
{
    for (const std::string &root : roots) {
        type(edit, root);
        click(IDC_COMP_ADD);
    }
}

/* The lead K (s + 1)/(s + 10): gain K, zero -1, pole -10, typed and added. */
inline void queueLead(const std::string &gain)
{
    type(IDC_COMP_GAIN, gain);
    queueRoots(IDC_COMP_ZERO_EDIT, {"-1"});
    queueRoots(IDC_COMP_POLE_EDIT, {"-10"});
}

/* The lists as the dialog held them when OK or Cancel was pressed, with their selections. */
struct ListState {
    std::vector<std::string> entries;
    int selected = -2;
};
inline ListState zerosAtEnd, polesAtEnd;
/* Whether the focus was on OK, and what the procedure answered, right after WM_INITDIALOG. */
inline bool focusOnOkAfterInit;
inline INT_PTR initDialogResult = -1;

inline ListState listState(HWND dialog, int id)
{
    ListState state;
    int count = (int)SendDlgItemMessageA(dialog, id, LB_GETCOUNT, 0, 0);
    for (int i = 0; i < count; i++) {
        char text[8192] = "";
        SendDlgItemMessageA(dialog, id, LB_GETTEXT, (WPARAM)i, (LPARAM)text);
        state.entries.push_back(text);
    }
    state.selected = (int)SendDlgItemMessageA(dialog, id, LB_GETCURSEL, 0, 0);
    return state;
}

/* compensatorDlg with the lists noted just before OK or Cancel is handled. */
inline INT_PTR spiedCompensatorDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        zerosAtEnd = listState(dialog, IDC_COMP_ZEROS);
        polesAtEnd = listState(dialog, IDC_COMP_POLES);
    }
    INT_PTR result = compensatorDlg(dialog, message, wParam, lParam);
    if (message == WM_INITDIALOG) {
        focusOnOkAfterInit = GetFocus() == GetDlgItem(dialog, IDOK);
        initDialogResult = result;
    }
    return result;
}

class CompensatorTest : public ::testing::Test {
protected:
    testing_support::TempDir dir;
    std::unique_ptr<xfertest::Model> plant;
    std::vector<std::pair<WPARAM, LPARAM>> hostCommands;

    void SetUp() override
    {
        testing_support::writeFile(dir.file("tervan.ini"), "");
        reusePlots = 0;
        testing_support::startHostWithPlugin(dir.file("tervan.ini"), dir.path);
        platform::setMainWindowHandler([this](UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (message == WM_COMMAND)
                hostCommands.push_back({wParam, lParam});
            return 0;
        });
        frequencyRange = {50, 0.1, 100.0};
        gainRange = {50, 0.0, 100.0};
        optionsMemory.autoRange = 0;
        frequencyPlotCount = rootLocusPlotCount = 0;
        frequencyUnit.selected = FREQUENCY_UNIT_RADIANS;
        phaseUnit.selected = PHASE_UNIT_DEGREES;
        displayPrecision = 6;
        testing_support::releasePluginRecords();
        currentList = currentEdit = 0;
        /* 1/(s (s + 1)) */
        plant.reset(xfertest::controllableForm({1.0, 0.0}, {0.0, 1.0}));
        stateSpaceModel = {plant->A, plant->B, plant->C, plant->D};
        platform::clearTranscript();
    }

    void TearDown() override
    {
        stateSpaceModel = {};     /* the plant's matrices are the test's */
        testing_support::releasePluginRecords();
        bodePhasePlot = bodeMagnitudePlot = nyquistPlot = rootLocusPlot = nullptr;
        currentList = currentEdit = 0;
        hostapp::resetHost();
    }

    /* The Compensator Design command's part after the linearization. */
    void design()
    {
        timeToFrequency(plant->A, plant->B, plant->C, plant->D, nullptr, nullptr, nullptr, XFER_SHOW_COMPENSATOR);
    }

    /* The dialog run on the plant with the lists noted at its end; returns its end code. */
    INT_PTR designSpied()
    {
        /* currentXfer's lists exist only inside timeToFrequency: the plant's, no zeros and
        ** the poles 0 and -1, are put there by hand. */
        Complex poles[] = {{0, 0}, {-1, 0}};
        currentXfer.zeros = nullptr;
        currentXfer.zeroCount = 0;
        currentXfer.poles = poles;
        currentXfer.poleCount = 2;
        INT_PTR result = runDialog(DIALOG, spiedCompensatorDlg);
        currentXfer.poles = nullptr;
        return result;
    }
};

/* Point `step` of root locus branch `branch`. */
inline Complex branchPoint(HostBlock *plot, int branch, int step)
{
    PlotRecord *record = plotRecordOf(plot);
    auto *x = (PlotPointBuffer *)tervanRequest(TERVAN_REQ_PLOT_BUFFER, (intptr_t)record, branch * 256);
    auto *y = (PlotPointBuffer *)tervanRequest(TERVAN_REQ_PLOT_BUFFER, (intptr_t)record, branch * 256 + 1);
    return {x->values[step], y->values[step]};
}

/* Transcript helpers. */
inline const std::vector<std::string> &lines() { return platform::transcript(); }

inline int lineOf(const std::string &text, int occurrence = 0)
{
    for (size_t i = 0; i < lines().size(); i++)
        if (lines()[i] == text && occurrence-- == 0)
            return (int)i;
    return -1;
}

inline int countLines(const std::string &text)
{
    int count = 0;
    for (const std::string &line : lines())
        count += line == text;
    return count;
}

/* The snapshot line of control `id` of kind `kind` in the n-th "Compensator Design" dialog. */
inline std::string shownControl(const std::string &kind, int id, int occurrence = 0)
{
    int start = lineOf("[dialog] Compensator Design", occurrence);
    if (start < 0)
        return "<no dialog>";
    std::string prefix = "  " + kind + " " + std::to_string(id);
    for (size_t i = start + 1; i < lines().size() && lines()[i].rfind("  ", 0) == 0; i++)
        if (lines()[i].rfind(prefix + " ", 0) == 0 || lines()[i].rfind(prefix + ":", 0) == 0)
            return lines()[i];
    return "<no control>";
}

}

#endif
