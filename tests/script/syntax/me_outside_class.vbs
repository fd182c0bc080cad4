x = Me.y
