// Letters by pressing a key once, twice, three times: as an input method.
#include "textinput/twelvekeys/multitap.h"
#include "textinput/twelvekeys/twelvekeyplugin.h"

class MultiTapPlugin : public TwelveKeyPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID ZInputMethodPlugin_iid FILE "multitap.json")
    Q_INTERFACES(ZInputMethodPlugin)

public:
    MultiTapPlugin() : TwelveKeyPlugin(m_method) { }

protected:
    void setLanguages(const QString &preferred, const QString &secondary) override
    {
        m_method.setLanguages(preferred, secondary);
    }

private:
    MultiTap m_method;
};

#include "multitapplugin.moc"
