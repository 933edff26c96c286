// Words that input methods offer, and the bar in which names are looked up.
#include "appbase/application/inputmessages.h"
#include "appbase/messaging/wire.h"
#include "textinput/server/zimserver.h"
#include "textinput/server/zimserver_p.h"

void ZIMServer::showWordCompletionTip(const QString &word)
{
    d->strip.setCompletionTip(d->setting.toolTip ? word.simplified() : QString());
}

void ZIMServer::requestWordCompletionEvent(const QString &beginning, DICTLANGTYPE language)
{
    handleWordCompletion(beginning, language, WordCompletionType::Word);
}

void ZIMServer::requestPhraseCompletion(const QString &before, DICTLANGTYPE language)
{
    handleWordCompletion(before, language, WordCompletionType::Phrase);
}

void ZIMServer::handleWordCompletion(QString text, DICTLANGTYPE language, WordCompletionType type)
{
    const bool wished = type == WordCompletionType::Word ? d->setting.wordCompletion : d->setting.nextWordPrediction;
    if (!wished)
        return;
    d->runCommand(ShowCompletionCmd());
    d->strip.setCompletionTip({});
    if (text.isEmpty())
        return;
    SetFollowCharsCmd follow;
    follow.characters = std::move(text);
    follow.language = language;
    follow.type = quint8(type);
    d->runCommand(follow);
    ShowCompletionCmd begin;
    begin.show = true;
    d->runCommand(begin);
}

void ZIMServer::slotTipClicked()
{
    const QString word = d->strip.completionTip();
    if (!word.isEmpty())
        d->onWordConfirmed(wire::pack(word));
}

void ZIMServer::enableFindBar(bool enable)
{
    if (std::exchange(d->findBarEnabled, enable) == enable)
        return;
    d->findBar.clear();
    d->findBar.hide();
    if (d->wanted)
        d->show(); // anew, with it or without
}

void ZIMServer::slotFindBarTextChanged(const QString &text)
{
    if (d->owner.editor != 0)
        QCopChannel::send(d->owner.channel, messages::kTextToContact, wire::pack(text));
}
