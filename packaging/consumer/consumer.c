/* A C program on the installed flat interface; touches no network. */
#include <orvane/orvane.h>

#include <stdio.h>

int main(void) {
    HW_Initialize();
    HW_SetDefault_PHY_ID(3);
    printf("C: revision %u, PHY %u\n", HW_Device_Revision(), HW_GetDefault_PHY_ID());
    HW_Close();
    return HW_GetDefault_PHY_ID() == 3 && !HW_Fail() ? 0 : 1;
}
