// Words by one press a letter: as an input method. It looks for its dictionaries beside the libraries of the input
// methods, and keeps what the user typed among the phone's settings.
#include "appbase/config/zconfig.h"
#include "textinput/plugin/imresdir.h"
#include "textinput/predictive/userwordsfile.h"
#include "textinput/predictive/wordprediction.h"
#include "textinput/state/zinputmethodstate.h"
#include "textinput/twelvekeys/twelvekeyplugin.h"

#include <QFile>
#include <cstdio>
#include <optional>

namespace {

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
        if (m_file)
            m_file->saveMany();
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
        m_file.reset();
        m_predictor = std::make_unique<Predictor>(keyletters::of(language), findDictionary(language));
        m_file.emplace(userFile(language), m_predictor->user());
        m_method.setPredictor(m_predictor.get());
    }

    void save()
    {
        if (m_file)
            m_file->save();
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
    std::optional<UserWordsFile> m_file; // of the predictor's words
    WordPrediction m_method;
};

#include "predictiveplugin.moc"
