#include "frmadd2.h"

void frmAdd2::cmdView_Click()
{
}
