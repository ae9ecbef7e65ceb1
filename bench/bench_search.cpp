// The receiver settings dialog while a Bluetooth search runs: how long a
// posted input event waits for the window's thread, and how long one paint
// of the dialog takes, with the search's worker busy against a fake BlueZ
// (python3-dbusmock on a private bus; offscreen platform). The budget is
// 50 ms for each, the worst case included (counters `worstEventMs` and
// `worstPaintMs`).
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <memory>

#include "BenchHarness.h"
#include "BluezSearch.h"
#include "FakeBluez.h"
#include "ReceiverSettingsDialog.h"

using namespace satwalk;

namespace {

link::FakeBluez* Bluez() {
    static std::unique_ptr<link::FakeBluez> bluez = [] {
        auto b = std::make_unique<link::FakeBluez>();
        if (!b->Start().empty())
            return std::unique_ptr<link::FakeBluez>();
        b->AddAdapter();
        for (int i = 0; i < 12; ++i)
            b->AddDevice(QString("00:11:22:33:44:%1").arg(i, 2, 10, QChar('0')),
                         QString("GPS %1").arg(i));
        return b;
    }();
    return bluez.get();
}

void BM_DialogDuringSearch(benchmark::State& state) {
    link::FakeBluez* bluez = Bluez();
    if (bluez == nullptr) {
        state.SkipWithError("no fake BlueZ (dbus-daemon, python3-dbusmock)");
        return;
    }
    QWidget window;
    window.resize(480, 640);
    shell::qt::DialogStack stack(window, 30);
    stack.SetArea(QRect(0, 0, 480, 640));
    auto* dialog = new shell::qt::ReceiverSettingsWidget(stack);
    link::ReceiverSettings settings;
    link::ReceiverSettingsDialog model = link::OpenReceiverSettings(settings, {});
    model.searching = model.waitCursor = true;
    dialog->Sync(model);
    stack.Open(dialog);

    link::BluetoothSearch search;
    search.busAddress = bluez->address;
    search.inquiryMs = 2000;
    int searches = 0;
    double worstEvent = 0;
    double worstPaint = 0;
    for (auto _ : state) {
        if (!search.Running() && search.Start(false))
            ++searches;
        QElapsedTimer t;
        t.start();
        bool ran = false;
        QTimer::singleShot(0, dialog, [&ran] { ran = true; });
        while (!ran) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        worstEvent = std::max(worstEvent, static_cast<double>(t.nsecsElapsed()) / 1e6);
        t.restart();
        dialog->repaint();
        worstPaint = std::max(worstPaint, static_cast<double>(t.nsecsElapsed()) / 1e6);
    }
    search.Cancel();
    dialog->Reject();
    state.counters["searches"] = searches;
    state.counters["worstEventMs"] = worstEvent;
    state.counters["worstPaintMs"] = worstPaint;
}
BENCHMARK(BM_DialogDuringSearch)->MinTime(5.0)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    return satwalk::bench::RunOffscreen<QApplication>(argc, argv);
}
