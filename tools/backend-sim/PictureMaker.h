#pragma once

#include <QByteArray>
#include <QString>

namespace Velmora::BackendSim::PictureMaker {

// The letters a captcha is made of: no 0/O, 1/I or Q that a reader could mistake.
QString captchaAlphabet();
QString randomCaptchaText(int length);

// PNG pictures drawn from a built-in 5x7 pixel font, so that the server needs neither a display
// nor a font on the machine. The captcha is noisy and jittered but readable by a person; the
// advertisement differs from variant to variant, so that its MD5 changes with it.
QByteArray captchaPng(const QString& text);
QByteArray advertisementPng(int variant);

} // namespace Velmora::BackendSim::PictureMaker
