// The smallest application that uses what is installed: a window with a text field. It tells at its end what the field
// holds.
#include <ZApplication>
#include <ZMainWidget>
#include <ZMultiLineEdit>
#include <cstdio>

int main(int argc, char **argv)
{
    ZApplication app(argc, argv);
    ZMainWidget window;
    auto *editor = new ZMultiLineEdit;
    window.setContentWidget(editor);
    editor->setText(QStringLiteral("version " VERSION));
    app.setMainWidget(&window);
    QObject::connect(&app, &ZApplication::shutdown, editor, [editor] { std::puts(qPrintable(editor->text())); });
    window.show();
    return ZApplication::exec();
}
