#include "OOPageControlDelegate.h"

OOPageControlDelegate::~OOPageControlDelegate() = default;

void OOPageControlDelegate::pageControlClicked(OOPageControl *, int)
{
}
