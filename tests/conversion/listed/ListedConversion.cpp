#include "tests/conversion/listed/ListedConversion.h"

#include "conversion/KSXPixelConversion.h"

KSX::PixelConversion::ConversionFunction kestrix::test::listedConversion(unsigned row)
{
    return KSX::PixelConversion::conversions[row].function;
}
