.model QMOD NPN (BF=50)
