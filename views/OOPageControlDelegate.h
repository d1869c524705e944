#pragma once

class OOPageControl;

// Told about taps on a page control's cells. The control in this system never
// reports taps; the hook stays for controls that do.
class OOPageControlDelegate {
public:
    virtual ~OOPageControlDelegate() = 0;
    virtual void pageControlClicked(OOPageControl *pageControl, int pageNumber);
};
