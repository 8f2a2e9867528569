namespace veldo {}
