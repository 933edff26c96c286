// Any arguments for any message of the four channels. The first two bytes choose the message.
#include "appbase/application/inputwidgethost.h"
#include "appbase/application/routes.h"
#include "appbase/application/zapplication.h"
#include "appbase/application/zmainwidget.h"
#include "platform/bus/busbroker.h"

#include <QLineEdit>
#include <cstdint>

namespace {

// A phone in one process: its bus, and an application that has the tables of the server too. Nothing here ends the
// process: no event loop runs that could be quit, and "amClosed()" is told to be survived.
class Phone : public InputWidgetHost {
public:
    Phone()
    {
        DisableAMClosedRestart();
        m_window.setContentWidget(m_editor);
        m_window.show();
        m_window.activateWindow();
        QCoreApplication::processEvents();
        m_editor->setFocus();
        m_application.registerEditor(m_editor);
        for (const routes::Rows rows : {routes::process(), routes::system(), routes::server(), routes::application()})
            m_rows.insert(m_rows.end(), rows.begin(), rows.end());
    }

    void handle(size_t which, const QByteArray &arguments)
    {
        (m_data.*m_rows.at(which % m_rows.size()).handle)(arguments);
        if (m_editor->text().size() > 10'000)
            m_editor->clear();
        if (++m_handled % 1000 == 0)
            QCoreApplication::processEvents(); // what was sent to this process
    }

    void selectInputMethod(const QUuid & /*method*/) override { }
    void showInputWidget(const Owner & /*owner*/, int /*show*/, int /*inputType*/) override { }
    void editorStateChanged(const Owner & /*owner*/, int /*state*/, int /*detail*/) override { }
    void editorGone(int /*editor*/) override { }

private:
    static inline int s_argc = 1;
    static inline char s_name[] = "fuzz_messages";
    static inline char *s_argv[] = {s_name, nullptr};

    std::unique_ptr<platform::BusBroker> m_bus = platform::BusBroker::listen().value();
    ZApplication m_application{s_argc, s_argv, ZApplication::Tty};
    ZApplicationData m_data{m_application, s_name};
    ZMainWidget m_window;
    QLineEdit *m_editor = new QLineEdit; // the window's
    std::vector<Route<ZApplicationData>> m_rows;
    int m_handled = 0;
};

}

// What fonts cost once.
extern "C" const char *__lsan_default_suppressions() // NOLINT: name fixed
{
    return "leak:libfontconfig\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static Phone &phone = *new Phone; // not destroyed: the toolkit's static objects go first
    if (size < 2)
        return 0;
    const size_t which = data[0] + size_t(data[1]) * 256;
    phone.handle(which, QByteArray(reinterpret_cast<const char *>(data + 2), qsizetype(size - 2)));
    return 0;
}
