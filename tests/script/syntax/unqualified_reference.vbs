x = .Name
