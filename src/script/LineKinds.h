#pragma once

#include "script/Lines.h"
#include "script/Tree.h"

#include <optional>

/// One reader for each kind of line. Fields are those of splitFields, the command at the front.
namespace zenka::script {

/// TAKEPIC,C2,-,00:08.0,CAM2,1/4000,8.0,200,0.000,RAW,None,N,C2 diamond ring
TakeLine readTake(Fields fields, Series series);

/// BKTDATA,5,1.0EV
BracketLine readBracket(const Fields& fields);

/// PLAY,C2,-,00:02:00.0,2_Minutes.wav, , , , , , , ,Two minutes to totality
/// Nothing where fields are missing.
std::optional<CueLine> readPlay(Fields fields);

/// COMMAND,C2,-,00:30.0, , , , , , , , ,Dim the screen;brightnessctl set 5%
/// Nothing where fields are missing.
std::optional<CueLine> readCommand(Fields fields);

/// CAMSET,CAM1,gap_same=0.5,gap_change=1
CamsetLine readCamset(const Fields& fields);

/// FOR,(VAR),0.5,0.5,99.5 or FOR,(INTERVALOMETER),0,30,10
Loop readFor(const Fields& fields);

} // namespace zenka::script
