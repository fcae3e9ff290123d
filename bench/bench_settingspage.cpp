// How long the window is blocked when SETTINGS is opened: the page, its three categories and
// their widgets are made, laid out and painted in one go on the GUI thread. The budget is 100 ms
// for the first opening. "Cold" is the first opening in the process, with the settings styles and
// language names not yet used; "Warm" repeats it in fresh windows. Baseline: the SMART page,
// made the same way.

#include "BenchmarkMain.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "download/DownloadManager.h"
#include "gui/MainWindow.h"
#include "gui/MenuBar.h"
#include "logger/Logger.h"
#include "rest/RestClient.h"
#include "system/System.h"
#include "update/ApplicationUpdate.h"

#include <QAbstractButton>

#include <memory>

using namespace Velmora;

namespace {

struct Window {
    System::System system;
    REST::RestClient restClient { QUrl(QStringLiteral("https://127.0.0.1:9/kestravin/public/api/")) };
    CommunicationWeb::TarnAuthorizationService authorization { &restClient };
    Download::DownloadManager downloads;
    Update::ApplicationUpdate applicationUpdate { &restClient, &authorization, &downloads };
    std::unique_ptr<Gui::MainWindow> window;

    Window()
    {
        Gui::MainWindow::Collaborators collaborators;
        collaborators.system = &system;
        collaborators.applicationUpdate = &applicationUpdate;
        window = std::make_unique<Gui::MainWindow>(collaborators);
        window->resize(1366, 768);
        window->show();
        window->repaint();
        QApplication::processEvents();
    }
};

void openPage(benchmark::State& state, Gui::Page::PageId id)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto window = std::make_unique<Window>();
        QAbstractButton* entry = window->window->findChild<Gui::MenuBar*>()->button(id);
        state.ResumeTiming();
        entry->click();
        // What the user waits for: the page made, laid out and on the screen.
        window->window->repaint();
        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
}

void BM_OpenSettingsCold(benchmark::State& state)
{
    openPage(state, Gui::Page::SettingsId);
}
void BM_OpenSettingsWarm(benchmark::State& state)
{
    openPage(state, Gui::Page::SettingsId);
}
void BM_OpenSmartPage(benchmark::State& state)
{
    openPage(state, Gui::Page::SmartParametersId);
}

} // namespace

// Registered in this order, so that the cold run really is the first opening of the process.
BENCHMARK(BM_OpenSettingsCold)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenSettingsWarm)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenSmartPage)->Unit(benchmark::kMillisecond);

KESTRAVIN_WIDGET_BENCHMARK_MAIN()
