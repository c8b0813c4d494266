/*
** hostapp/report_command.cpp: linearizing through the plug-in for the report, and the
** report on the result.
*/
#include "hostapp/report_command.h"

#include "hostapp/host_state.h"
#include "linearize/linearize.h"
#include "platform/driver.h"

namespace hostapp {

namespace {

const uint16_t LINEARIZE_COMMAND = 206;

std::vector<double> valuesOf(const Matrix *m, size_t count)
{
    return m ? std::vector<double>(m->data, m->data + count) : std::vector<double>(count, 0.0);
}

}

bool linearizeSelection(analysis::Model *model)
{
    HostState &state = host();
    if (!state.plugin.command || !state.plugin.model || !state.plugin.samplePeriod)
        return false;
    platform::DialogAction cancel;
    cancel.dialog = "LINEARIZE";
    cancel.kind = platform::ActionKind::Cancel;
    platform::clearDialogActions();
    platform::queueDialogAction(cancel);
    int before = state.linearizations;
    state.plugin.command(LINEARIZE_COMMAND);
    platform::clearDialogActions();
    const StateSpaceModel &m = *state.plugin.model;
    if (state.linearizations == before || !m.A || !m.B || !m.C || !m.D)
        return false;
    uint32_t n = m.A->rows;
    model->order = n;
    model->a = valuesOf(m.A, (size_t)n * n);
    model->b = valuesOf(m.B, n);
    model->c = valuesOf(m.C, n);
    model->d = m.D->data[0];
    model->samplePeriod = *state.plugin.samplePeriod;
    return true;
}

bool selectionReport(bool json, std::string *out, std::string *error)
{
    analysis::Model model;
    if (!linearizeSelection(&model)) {
        *error = "the selection could not be linearized (the transcript says why); pick other points or blocks";
        return false;
    }
    *out = json ? analysis::modelReportJson(model) : analysis::modelReportText(model);
    return true;
}

}
