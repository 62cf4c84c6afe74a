#pragma once
// Which phones of a card are on the hook: the card is asked itself.

void installOnhookCommand();
