// Words by one press a letter: as an input method. It looks for its dictionaries beside the libraries of the input
// methods, and keeps what the user typed among the phone's settings.
#include "appbase/config/zconfig.h"
#include "platform/system/filecontent.h"
#include "platform/system/filereplace.h"
#include "textinput/plugin/imresdir.h"
#include "textinput/predictive/wordprediction.h"
#include "textinput/state/zinputmethodstate.h"
#include "textinput/twelvekeys/twelvekeyplugin.h"

#include <QFile>
#include <cstdio>

namespace {

constexpr quint64 kSaveEvery = 20; // words: so many are lost at most when the power goes
constexpr mode_t kMode = 0600; // what the user writes is nobody else's

std::unique_ptr<Dictionary> findDictionary(const QString &language)
{
    for (int kind = 0; kind < IM_ResDir::kKinds; ++kind) {
        const QString file = IM_ResDir::getIMPluginDir(kind) + QStringLiteral("dictionaries/") + language
            + QStringLiteral(".dictionary");
        if (auto dictionary = Dictionary::open(file))
            return dictionary;
        if (QFile::exists(file))
            std::fprintf(stderr, "tyx-imhost: %s is no dictionary, or damaged: done without\n", qUtf8Printable(file));
    }
    return nullptr;
}

}

class PredictivePlugin : public TwelveKeyPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID ZInputMethodPlugin_iid FILE "predictive.json")
    Q_INTERFACES(ZInputMethodPlugin)

public:
    PredictivePlugin() : TwelveKeyPlugin(m_method) { }
    ~PredictivePlugin() override { save(); }
    PredictivePlugin(const PredictivePlugin &) = delete;
    PredictivePlugin &operator=(const PredictivePlugin &) = delete;

    void runCommand(const IMStateCmd &command) override
    {
        TwelveKeyPlugin::runCommand(command);
        switch (command.number) {
        case IMStateCmd::SelectInputMethod:
            load();
            break;
        case IMStateCmd::SetInputMode:
            setSecret(static_cast<const SetInputModeCmd &>(command).mode);
            break;
        case IMStateCmd::SetEditContext:
            readContext();
            break;
        case IMStateCmd::PhraseCompletionSetting: {
            const auto &setting = static_cast<const PhraseCompletionSettingCmd &>(command);
            m_method.setOptions({setting.wordCompletion, setting.nextWordPrediction, setting.userDictionary});
            break;
        }
        default:
            return;
        }
        refresh();
    }

    void keyEvent(const HardKey &key) override
    {
        TwelveKeyPlugin::keyEvent(key);
        if (m_predictor && m_predictor->user().changes() >= m_saved + kSaveEvery)
            save();
    }

protected:
    void hidden() override { save(); }

private:
    [[nodiscard]] static QString userFile(const QString &language)
    {
        return ZConfig::initSettingDirectory() + QStringLiteral("words-") + language + QStringLiteral(".txt");
    }

    void load()
    {
        const QString language = m_method.language();
        if (m_predictor && m_predictor->letters().language == language)
            return;
        save();
        m_method.setPredictor(nullptr);
        m_predictor = std::make_unique<Predictor>(keyletters::of(language), findDictionary(language));
        if (const auto text = platform::fileContent(userFile(language), UserDictionary::kLargestFile))
            m_predictor->user().read(*text);
        m_saved = m_predictor->user().changes();
        m_method.setPredictor(m_predictor.get());
    }

    void save()
    {
        if (!m_predictor || m_predictor->user().changes() == m_saved)
            return;
        m_saved = m_predictor->user().changes();
        const QString file = userFile(m_predictor->letters().language);
        const QByteArray text = m_predictor->user().write();
        if (!platform::replaceFile(file, std::as_bytes(std::span(text.constData(), std::size_t(text.size()))), kMode))
            std::fprintf(stderr, "tyx-imhost: %s cannot be written: the words are kept for the next time\n",
                qUtf8Printable(file));
    }

    void setSecret(int mode)
    {
        if (mode != SetInputModeCmd::NextShift)
            m_method.setSecret(mode == SetInputModeCmd::Secret || mode == SetInputModeCmd::Numbers); // a PIN is both
    }

    void readContext()
    {
        const ZInputMethodEditContext context = m_state.getEditContext();
        m_method.setTextBefore(context.line(context.cursorLine()).first(context.cursorPosition()));
    }

    ZInputMethodState m_state;
    std::unique_ptr<Predictor> m_predictor;
    quint64 m_saved = 0; // changes of the user's words that are in the file
    WordPrediction m_method;
};

#include "predictiveplugin.moc"
