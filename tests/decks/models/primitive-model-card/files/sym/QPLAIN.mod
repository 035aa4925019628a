.model QPLAIN NPN (BF=80)
