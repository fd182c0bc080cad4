#pragma once

#include "flash/avm2/interpreter/Native.h"

// Members of classes of the display list that are about the user's input and about sound.
namespace flash::avm2::interactive
{

// ---- InteractiveObject ----
Value tabEnabled(Call& call);
Value setTabEnabled(Call& call);
Value tabIndex(Call& call);
Value setTabIndex(Call& call);
Value focusRect(Call& call);
Value setFocusRect(Call& call);

// ---- Sprite ----
Value startDrag(Call& call);
Value stopDrag(Call& call);
Value dropTarget(Call& call);

// ---- Sprite: the sounds below it ----
Value ownerTransform(Call& call);
Value setOwnerTransform(Call& call);

// ---- MouseEvent ----
Value stageX(Call& call);
Value stageY(Call& call);
Value updateAfterEvent(Call& call);
Value tapStageX(Call& call); ///< of gestures with a place of their own
Value tapStageY(Call& call);

// ---- Stage ----
Value stageTabChildren(Call& call);
Value setStageTabChildren(Call& call);
Value stageFocus(Call& call);
Value setStageFocus(Call& call);

} // namespace flash::avm2::interactive
